#pragma once

#include <QImage>
#include <cstdint>
#include <vector>

namespace vorla {

/// Chooses the colours that stand for all of a true-colour picture, and finds the nearest of them.
///
/// The colour cube, cut down to 5 bits a channel, is split again and again: always the box with the
/// greatest variance, across its longest axis of variance, at the mean (after X. Wu, "Color
/// quantization by dynamic programming and principal analysis", 1992, axes kept parallel). A box
/// that one colour dominates gets that colour, so that flat areas stay flat.
class ColorQuantizer {
 public:
    /// Reads an ARGB32 picture; pixels with an alpha below 128 do not count. `maximum` is
    /// 1 to 256. Throws std::bad_alloc.
    ColorQuantizer(const QImage& image, size_t maximum);

    /// 0x00RRGGBB words.
    [[nodiscard]] const std::vector<uint32_t>& colors() const { return colors_; }

    /// The number of the nearest colour; channels from 0 to 255. Remembers what it found, hence not
    /// const: one thread at a time.
    int nearest(int red, int green, int blue);

 private:
    std::vector<uint32_t> colors_;
    std::vector<int16_t> found_;  // by 6 bits a channel, -1 where not asked yet
};

}  // namespace vorla
