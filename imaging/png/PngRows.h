#pragma once

#include <QImage>
#include <cstdint>
#include <vector>

#include "imaging/png/PngPalette.h"

namespace vorla {

/// How the pixels of one picture go into its file. `image` is RGB32, ARGB32 or ARGB32_Premultiplied
/// and, like `palette`, outlives the encoding.
struct PngLayout {
    const QImage* image;
    const PngPalette* palette;  ///< null: true colour
    bool hasAlpha;

    [[nodiscard]] size_t pixelBytes() const { return palette ? 1 : hasAlpha ? 4 : 3; }
    [[nodiscard]] size_t rows() const { return static_cast<size_t>(image->height()); }
    [[nodiscard]] size_t rowBytes() const {
        return static_cast<size_t>(image->width()) * pixelBytes();
    }
    /// A row as it is compressed: the number of its filter goes first.
    [[nodiscard]] size_t filteredBytes() const { return rowBytes() + 1; }
};

/// Turns rows of a picture into what a PNG file compresses: packed and filtered. One object serves
/// one thread.
class PngRows {
 public:
    explicit PngRows(const PngLayout& layout);

    /// Writes rows `first` up to but not including `end` to `out`, and nothing behind them. Throws
    /// std::bad_alloc.
    void filter(size_t first, size_t end, uint8_t* out);

 private:
    void pack(size_t y, std::vector<uint8_t>& row) const;

    const PngLayout& layout_;
    std::vector<uint8_t> row_;
    std::vector<uint8_t> above_;
    std::vector<uint8_t> last_;
};

}  // namespace vorla
