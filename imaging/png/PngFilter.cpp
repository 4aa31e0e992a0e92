#include "imaging/png/PngFilter.h"

#include <algorithm>

#include "imaging/png/PngFilterKernels.h"

#if defined(__x86_64__) || defined(__i386__)
#define VORLA_HAS_AVX2_KERNELS 1
#endif

namespace vorla {
namespace {

using Baseline = PngFilterKernels<16>;

#ifdef VORLA_HAS_AVX2_KERNELS
using Wide = PngFilterKernels<32>;

bool hasAvx2() {
    static const bool has = __builtin_cpu_supports("avx2") != 0;
    return has;
}

// The kernels are inlined into these and so compiled for AVX2; nothing else in the file is.
[[gnu::target("avx2")]] PngFilter::Type bestAvx2(const uint8_t* row, const uint8_t* above,
                                                 size_t bytes, size_t pixelBytes) {
    return Wide::best(row, above, bytes, pixelBytes);
}
[[gnu::target("avx2")]] void applyAvx2(PngFilter::Type type, const uint8_t* row,
                                       const uint8_t* above, size_t bytes, size_t pixelBytes,
                                       uint8_t* out) {
    Wide::apply(type, row, above, bytes, pixelBytes, out);
}
[[gnu::target("avx2")]] void packRgbAvx2(const uint32_t* pixels, size_t count, uint8_t* out) {
    Wide::packRgb(pixels, count, out);
}
#endif

}  // namespace

PngFilter::Type PngFilter::best(const uint8_t* row, const uint8_t* above, size_t bytes,
                                size_t pixelBytes) {
#ifdef VORLA_HAS_AVX2_KERNELS
    if (hasAvx2()) return bestAvx2(row, above, bytes, pixelBytes);
#endif
    return Baseline::best(row, above, bytes, pixelBytes);
}

void PngFilter::apply(Type type, const uint8_t* row, const uint8_t* above, size_t bytes,
                      size_t pixelBytes, uint8_t* out) {
#ifdef VORLA_HAS_AVX2_KERNELS
    if (hasAvx2()) return applyAvx2(type, row, above, bytes, pixelBytes, out);
#endif
    Baseline::apply(type, row, above, bytes, pixelBytes, out);
}

void PngFilter::packRgb(const uint32_t* pixels, size_t count, uint8_t* out) {
#ifdef VORLA_HAS_AVX2_KERNELS
    if (hasAvx2()) return packRgbAvx2(pixels, count, out);
#endif
    for (size_t i = 0; i < count; ++i, out += 3) {
        out[0] = static_cast<uint8_t>(pixels[i] >> 16);
        out[1] = static_cast<uint8_t>(pixels[i] >> 8);
        out[2] = static_cast<uint8_t>(pixels[i]);
    }
}

void PngFilter::packRgba(const uint32_t* pixels, size_t count, uint8_t* out) {
    for (size_t i = 0; i < count; ++i, out += 4) {
        out[0] = static_cast<uint8_t>(pixels[i] >> 16);
        out[1] = static_cast<uint8_t>(pixels[i] >> 8);
        out[2] = static_cast<uint8_t>(pixels[i]);
        out[3] = static_cast<uint8_t>(pixels[i] >> 24);
    }
}

bool PngFilter::isOpaque(const uint32_t* pixels, size_t count) {
    uint32_t all = 0xff000000U;
    for (size_t i = 0; i < count; ++i) all &= pixels[i];
    return all == 0xff000000U;
}

PngFilter::Residue PngFilter::residue(const uint8_t* bytes, size_t count) {
    constexpr size_t kStep = 31;  // prime to the bytes of a pixel, so that all channels are seen
    size_t seen = 0, zeroes = 0, upToTwo = 0;
    for (size_t i = 0; i < count; i += kStep, ++seen) {
        zeroes += bytes[i] == 0 ? 1 : 0;
        upToTwo += static_cast<uint8_t>(bytes[i] + 2) <= 4 ? 1 : 0;
    }
    const auto share = [](size_t part, size_t whole) {
        return static_cast<double>(part) / static_cast<double>(std::max<size_t>(1, whole));
    };
    return {share(zeroes, seen), share(upToTwo - zeroes, seen - zeroes)};
}

}  // namespace vorla
