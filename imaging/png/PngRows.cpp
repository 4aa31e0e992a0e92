#include "imaging/png/PngRows.h"

#include <algorithm>
#include <new>

#include "imaging/png/PngFilter.h"

namespace vorla {

PngRows::PngRows(const PngLayout& layout)
    : layout_(layout),
      row_(layout.rowBytes() + 2 * PngFilter::kMargin),
      above_(layout.rowBytes() + 2 * PngFilter::kMargin),
      last_(layout.rowBytes() + PngFilter::kMargin) {}

void PngRows::pack(size_t y, std::vector<uint8_t>& row) const {
    uint8_t* out = row.data() + PngFilter::kMargin;
    const QImage& image = *layout_.image;
    const auto width = static_cast<size_t>(image.width());
    const uchar* line = image.constScanLine(static_cast<int>(y));
    const auto* pixels = reinterpret_cast<const uint32_t*>(line);
    if (layout_.palette) {
        layout_.palette->index(pixels, width, out);
    } else if (!layout_.hasAlpha) {
        PngFilter::packRgb(pixels, width, out);
    } else if (image.format() != QImage::Format_ARGB32_Premultiplied) {
        PngFilter::packRgba(pixels, width, out);
    } else {
        // Qt's own conversion, so that the file holds the very values that Qt's writer would put.
        const QImage one(line, image.width(), 1, image.bytesPerLine(), image.format());
        const QImage straight = one.convertToFormat(QImage::Format_ARGB32);
        if (straight.isNull()) throw std::bad_alloc();
        PngFilter::packRgba(reinterpret_cast<const uint32_t*>(straight.constScanLine(0)), width,
                            out);
    }
}

void PngRows::filter(size_t first, size_t end, uint8_t* out) {
    const size_t bytes = layout_.rowBytes();
    if (first > 0 && !layout_.palette)
        pack(first - 1, above_);
    else
        std::ranges::fill(above_, uint8_t{0});
    for (size_t y = first; y < end; ++y, out += layout_.filteredBytes()) {
        pack(y, row_);
        const uint8_t* row = row_.data() + PngFilter::kMargin;
        const uint8_t* above = above_.data() + PngFilter::kMargin;
        const auto type = layout_.palette
                              ? PngFilter::None
                              : PngFilter::best(row, above, bytes, layout_.pixelBytes());
        out[0] = type;
        // What a filter writes behind its row the next rows overwrite, but not behind the last
        // ones.
        const bool isLast = (end - y - 1) * layout_.filteredBytes() < PngFilter::kMargin;
        PngFilter::apply(type, row, above, bytes, layout_.pixelBytes(),
                         isLast ? last_.data() : out + 1);
        if (isLast) std::copy_n(last_.data(), bytes, out + 1);
        row_.swap(above_);
    }
}

}  // namespace vorla
