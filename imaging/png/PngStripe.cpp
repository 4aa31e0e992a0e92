#include "imaging/png/PngStripe.h"

#include <libdeflate.h>

#include <algorithm>
#include <new>

#include "imaging/png/PngFilter.h"

namespace vorla {
namespace {

// In a photograph's noise most repetitions are chance: many are tried for little gain. Fewer
// candidates serve grain that differs between channels, colours and greys alike.
constexpr DeflateCoder::Effort kFlatEffort = {
    .shortest = 5, .candidates = 12, .goodLength = 96, .missesPerStep = 256};
constexpr DeflateCoder::Effort kPhotoEffort = {
    .shortest = 5, .candidates = 4, .goodLength = 24, .missesPerStep = 32};

}  // namespace

PngStripe::PngStripe(const PngLayout& layout)
    : layout_(layout),
      row_(layout.rowBytes() + 2 * PngFilter::kMargin),
      above_(layout.rowBytes() + 2 * PngFilter::kMargin) {}

void PngStripe::packRow(int y, std::vector<uint8_t>& row) const {
    uint8_t* out = row.data() + PngFilter::kMargin;
    const auto width = static_cast<size_t>(layout_.image->width());
    const uchar* line = layout_.image->constScanLine(y);
    const auto* pixels = reinterpret_cast<const uint32_t*>(line);
    if (layout_.palette) {
        layout_.palette->index(pixels, width, out);
    } else if (!layout_.hasAlpha) {
        PngFilter::packRgb(pixels, width, out);
    } else if (layout_.image->format() != QImage::Format_ARGB32_Premultiplied) {
        PngFilter::packRgba(pixels, width, out);
    } else {
        // Qt's own conversion, so that the file holds the very values that Qt's writer would put.
        const QImage one(line, layout_.image->width(), 1, layout_.image->bytesPerLine(),
                         layout_.image->format());
        const QImage straight = one.convertToFormat(QImage::Format_ARGB32);
        if (straight.isNull()) throw std::bad_alloc();
        PngFilter::packRgba(reinterpret_cast<const uint32_t*>(straight.constScanLine(0)), width,
                            out);
    }
}

void PngStripe::filterRows(int first, int end) {
    const size_t bytes = layout_.rowBytes();
    window_.resize(static_cast<size_t>(end - first) * (bytes + 1) + PngFilter::kMargin);
    if (first > 0 && !layout_.palette)
        packRow(first - 1, above_);
    else
        std::fill(above_.begin(), above_.end(), uint8_t{0});
    uint8_t* out = window_.data();
    for (int y = first; y < end; ++y, out += bytes + 1) {
        packRow(y, row_);
        const uint8_t* row = row_.data() + PngFilter::kMargin;
        const uint8_t* above = above_.data() + PngFilter::kMargin;
        const auto type = layout_.palette
                              ? PngFilter::None
                              : PngFilter::best(row, above, bytes, layout_.pixelBytes());
        out[0] = type;
        PngFilter::apply(type, row, above, bytes, layout_.pixelBytes(), out + 1);
        row_.swap(above_);
    }
}

DeflateCoder::Effort PngStripe::effortFor(const uint8_t* bytes, size_t size) const {
    if (layout_.palette) return kFlatEffort;
    return PngFilter::zeroShare(bytes, size) > 0.5 ? kFlatEffort : kPhotoEffort;
}

PngStripe::Sum PngStripe::encode(size_t number, std::vector<uint8_t>& out) {
    const size_t rowSize = layout_.rowBytes() + 1;
    const size_t first = number * layout_.rowsPerStripe;
    const size_t end =
        std::min(first + layout_.rowsPerStripe, static_cast<size_t>(layout_.image->height()));
    const size_t historyRows = std::min(first, (DeflateCoder::kHistory + rowSize - 1) / rowSize);
    filterRows(static_cast<int>(first - historyRows), static_cast<int>(end));

    const size_t history = historyRows * rowSize;
    const size_t size = (end - first) * rowSize;
    const uint8_t* stripe = window_.data() + history;
    coder_.code({window_.data(), history + size}, history, effortFor(stripe, size),
                number + 1 == layout_.stripes(), out);
    return {libdeflate_adler32(1, stripe, size), size};
}

}  // namespace vorla
