#pragma once

#include <cstddef>
#include <cstdint>

namespace vorla {

/// The row filters of PNG (second edition, section 9) and the packing of QRgb words into its bytes,
/// vectorised for the processor at hand (AVX2, else the baseline of the build).
class PngFilter {
 public:
    /// Bytes before a row that must be readable and zero, and bytes behind it that must be readable
    /// and, for a filter's output, writable.
    static constexpr size_t kMargin = 32;

    enum Type : uint8_t { None = 0, Sub = 1, Up = 2, Average = 3, Paeth = 4 };

    /// The filter whose result has the least sum of absolute signed values, the customary estimate
    /// of what compresses best; the simpler one of equals. `above` is the row above, zeroes for the
    /// first one; both rows have kMargin on both sides.
    static Type best(const uint8_t* row, const uint8_t* above, size_t bytes, size_t pixelBytes);

    /// Writes the filtered row to `out`.
    static void apply(Type type, const uint8_t* row, const uint8_t* above, size_t bytes,
                      size_t pixelBytes, uint8_t* out);

    /// Packs 0xAARRGGBB words into R, G, B bytes, or R, G, B, A bytes. `out` has kMargin behind it.
    static void packRgb(const uint32_t* pixels, size_t count, uint8_t* out);
    static void packRgba(const uint32_t* pixels, size_t count, uint8_t* out);

    /// Whether every alpha byte is 255.
    static bool isOpaque(const uint32_t* pixels, size_t count);

    /// What the filters left, from a sample of the bytes.
    struct Residue {
        double zeroes;  ///< share of the bytes
        double small;   ///< of those that are not zero, the share of -2 to 2

        /// Even areas with sharp edges, such as text; soft shades leave many small bytes.
        [[nodiscard]] bool isFlat() const { return zeroes > 0.8 && small < 0.5; }
    };
    static Residue residue(const uint8_t* bytes, size_t count);
};

}  // namespace vorla
