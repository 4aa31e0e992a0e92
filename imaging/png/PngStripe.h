#pragma once

#include <QImage>
#include <cstdint>
#include <vector>

#include "imaging/png/DeflateCoder.h"
#include "imaging/png/PngPalette.h"

namespace vorla {

/// How the pixels of one picture go into its file. `image` is RGB32, ARGB32 or ARGB32_Premultiplied
/// and, like `palette`, outlives the encoding.
struct PngLayout {
    const QImage* image;
    const PngPalette* palette;  ///< null: true colour
    bool hasAlpha;
    size_t rowsPerStripe;

    [[nodiscard]] size_t pixelBytes() const { return palette ? 1 : hasAlpha ? 4 : 3; }
    [[nodiscard]] size_t rowBytes() const {
        return static_cast<size_t>(image->width()) * pixelBytes();
    }
    [[nodiscard]] size_t stripes() const {
        return (static_cast<size_t>(image->height()) + rowsPerStripe - 1) / rowsPerStripe;
    }
};

/// Turns stripes of a picture into deflated data, one after the other; each worker thread has one.
class PngStripe {
 public:
    explicit PngStripe(const PngLayout& layout);

    /// Filters and compresses stripe `number`, appending to `out`; gives the Adler-32 of the
    /// filtered bytes and their number. Throws std::bad_alloc.
    struct Sum {
        uint32_t adler;
        size_t bytes;
    };
    Sum encode(size_t number, std::vector<uint8_t>& out);

 private:
    void packRow(int y, std::vector<uint8_t>& row) const;
    void filterRows(int first, int end);
    [[nodiscard]] DeflateCoder::Effort effortFor(const uint8_t* bytes, size_t size) const;

    const PngLayout& layout_;
    std::vector<uint8_t> row_;
    std::vector<uint8_t> above_;
    std::vector<uint8_t> window_;  // filtered rows: history, then the stripe
    DeflateCoder coder_;
};

}  // namespace vorla
