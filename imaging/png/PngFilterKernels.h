#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "imaging/png/PngFilter.h"

namespace vorla {

/// The vector types of a width in bytes.
template <int Width>
struct PngVectors;
template <>
struct PngVectors<16> {
    typedef uint8_t Bytes __attribute__((vector_size(16)));
    typedef uint16_t Words __attribute__((vector_size(16)));
    typedef int8_t Mask __attribute__((vector_size(16)));
};
template <>
struct PngVectors<32> {
    typedef uint8_t Bytes __attribute__((vector_size(32)));
    typedef uint16_t Words __attribute__((vector_size(32)));
    typedef int8_t Mask __attribute__((vector_size(32)));
};

/// The loops of PngFilter over vectors of `Width` bytes, written with the compiler's vector types
/// so that the same text serves every instruction set. All of it is inlined into the caller, which
/// chooses the instruction set. Vectors travel by reference only: passing them by value would make
/// the calling convention depend on it.
template <int Width>
struct PngFilterKernels {
    using Bytes = typename PngVectors<Width>::Bytes;
    using Words = typename PngVectors<Width>::Words;
    using Mask = typename PngVectors<Width>::Mask;
    using Pixels = PngVectors<16>::Bytes;
    using Type = PngFilter::Type;

    // A vector adds at most 2 * 128 to each 16-bit sum.
    static constexpr size_t kVectorsPerSum = 255;

    [[gnu::always_inline]] static inline void load(Bytes& to, const uint8_t* from) {
        std::memcpy(&to, from, Width);
    }

    [[gnu::always_inline]] static inline void load(Bytes& to, const uint8_t* from, size_t count) {
        if (count == Width)
            std::memcpy(&to, from, Width);
        else
            std::memcpy(&to, from, count);
    }

    [[gnu::always_inline]] static inline void average(Bytes& to, const Bytes& a, const Bytes& b) {
        to = (a & b) + (((a ^ b) >> 1) & 0x7f);
    }

    /// Paeth's predictor on bytes alone. With d = b - c and e = a - c its three differences are
    /// |d|, |e| and |d + e|; the last is the least only if d and e have opposite signs, and is then
    /// ||d| - |e||.
    [[gnu::always_inline]] static inline void paeth(Bytes& to, const Bytes& a, const Bytes& b,
                                                    const Bytes& c) {
        const Bytes pa = (b > c ? b : c) - (b > c ? c : b);
        const Bytes pb = (a > c ? a : c) - (a > c ? c : a);
        const Bytes pc = (pa > pb ? pa : pb) - (pa > pb ? pb : pa);
        const Mask opposite = (b > c) ^ (a > c);
        const Mask takesC = opposite & (pc < pa) & (pc < pb);
        const Bytes near = pa <= pb ? a : b;
        to = takesC ? c : near;
    }

    [[gnu::always_inline]] static inline void addMagnitudes(Words& sum, const Bytes& value) {
        const Bytes negated = Bytes{} - value;
        const Bytes magnitude = value < negated ? value : negated;
        Words words;
        std::memcpy(&words, &magnitude, Width);
        sum += (words & 0xff) + (words >> 8);
    }

    [[gnu::always_inline]] static inline uint64_t total(const Words& sums) {
        uint64_t sum = 0;
        for (int i = 0; i < Width / 2; ++i) sum += sums[i];
        return sum;
    }

    [[gnu::always_inline]] static inline Type best(const uint8_t* row, const uint8_t* above,
                                                   size_t bytes, size_t pixelBytes) {
        std::array<uint64_t, 5> costs = {};
        for (size_t i = 0; i < bytes;) {
            Words sums[5] = {};
            const size_t vectors = std::min(kVectorsPerSum, (bytes - i + Width - 1) / Width);
            for (size_t v = 0; v < vectors; ++v, i += Width) {
                Bytes x = {}, a = {}, b = {}, c = {}, predicted;
                const size_t count = std::min<size_t>(Width, bytes - i);
                load(x, row + i, count);
                load(a, row + i - pixelBytes, count);
                load(b, above + i, count);
                load(c, above + i - pixelBytes, count);
                addMagnitudes(sums[0], x);
                addMagnitudes(sums[1], x - a);
                addMagnitudes(sums[2], x - b);
                average(predicted, a, b);
                addMagnitudes(sums[3], x - predicted);
                paeth(predicted, a, b, c);
                addMagnitudes(sums[4], x - predicted);
            }
            for (size_t type = 0; type < costs.size(); ++type) costs[type] += total(sums[type]);
        }
        return static_cast<Type>(std::min_element(costs.begin(), costs.end()) - costs.begin());
    }

    [[gnu::always_inline]] static inline void apply(Type type, const uint8_t* row,
                                                    const uint8_t* above, size_t bytes,
                                                    size_t pixelBytes, uint8_t* out) {
        if (type == PngFilter::None) {
            std::memcpy(out, row, bytes);
            return;
        }
        for (size_t i = 0; i < bytes; i += Width) {
            Bytes x, a, b, c, predicted;
            load(x, row + i);
            load(a, row + i - pixelBytes);
            load(b, above + i);
            load(c, above + i - pixelBytes);
            switch (type) {
                case PngFilter::Sub:
                    predicted = a;
                    break;
                case PngFilter::Up:
                    predicted = b;
                    break;
                case PngFilter::Average:
                    average(predicted, a, b);
                    break;
                default:
                    paeth(predicted, a, b, c);
                    break;
            }
            x -= predicted;
            std::memcpy(out + i, &x, Width);
        }
    }

    [[gnu::always_inline]] static inline void packRgb(const uint32_t* pixels, size_t count,
                                                      uint8_t* out) {
        size_t i = 0;
        for (; i + 4 <= count; i += 4, out += 12) {
            Pixels four;
            std::memcpy(&four, pixels + i, sizeof four);
            four = __builtin_shufflevector(four, four, 2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, 3, 3,
                                           3, 3);
            std::memcpy(out, &four, sizeof four);
        }
        for (; i < count; ++i, out += 3) {
            out[0] = static_cast<uint8_t>(pixels[i] >> 16);
            out[1] = static_cast<uint8_t>(pixels[i] >> 8);
            out[2] = static_cast<uint8_t>(pixels[i]);
        }
    }
};

}  // namespace vorla
