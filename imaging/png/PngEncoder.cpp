#include "imaging/png/PngEncoder.h"

#include <libdeflate.h>

#include <exception>
#include <memory>
#include <new>
#include <optional>

#include "imaging/ImageHelpers.h"
#include "imaging/png/PngChunk.h"
#include "imaging/png/PngFilter.h"
#include "imaging/png/PngRows.h"
#include "imaging/png/PngStripes.h"

namespace vorla {
namespace {

constexpr size_t kSmallestIndexed = 4096;  // pixels; below, a palette is not worth its bytes
constexpr size_t kLargestSmall = size_t{1} << 20;  // pixels
constexpr size_t kLargestRow = size_t{1} << 28;
constexpr size_t kLargestChunk = size_t{1} << 30;

// Levels of libdeflate. At 6 files are no larger than those of the usual writers. Where someone
// waits, a photograph needs 5 for that, and what is flat only 2.
constexpr int kBackgroundLevel = 6;
constexpr int kPhotoLevel = 5;
constexpr int kFlatLevel = 2;

void appendHeader(const PngLayout& layout, QByteArray& out) {
    PngChunk chunk("IHDR", out);
    PngChunk::appendWord(static_cast<uint32_t>(layout.image->width()), out);
    PngChunk::appendWord(static_cast<uint32_t>(layout.image->height()), out);
    const char colorType = layout.palette ? 3 : layout.hasAlpha ? 6 : 2;
    out.append(8).append(colorType).append(3, '\0');
    chunk.end();
}

void appendResolution(const QImage& image, QByteArray& out) {
    PngChunk chunk("pHYs", out);
    for (int axis = 0; axis < 2; ++axis)
        PngChunk::appendWord(static_cast<uint32_t>(dotsPerMeter(image)), out);
    out.append(1);  // a metre is the unit
    chunk.end();
}

void appendPalette(const PngPalette& palette, QByteArray& out) {
    PngChunk chunk("PLTE", out);
    for (const uint32_t color : palette.colors())
        for (const int shift : {16, 8, 0}) out.append(static_cast<char>(color >> shift));
    chunk.end();
}

/// Appends the pixels as one chunk, compressed in one piece by libdeflate; false, with nothing
/// appended, where the memory for that is not there.
bool appendWhole(const PngLayout& layout, PngEncoder::Goal goal, QByteArray& out) {
    const size_t size = layout.filteredBytes() * layout.rows();
    const std::unique_ptr<uint8_t[]> rows(new (std::nothrow) uint8_t[size + PngRows::kMargin]);
    if (!rows) return false;
    PngRows(layout).filter(0, layout.rows(), rows.get());

    const bool isFlat = PngFilter::zeroShare(rows.get(), size) > 0.5;
    const int level = goal == PngEncoder::Goal::Size ? kBackgroundLevel
                      : isFlat || layout.palette     ? kFlatLevel
                                                     : kPhotoLevel;
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> coder(
        libdeflate_alloc_compressor(level), &libdeflate_free_compressor);
    if (!coder) return false;
    PngChunk chunk("IDAT", out);
    const size_t used = static_cast<size_t>(out.size());
    const size_t room = libdeflate_zlib_compress_bound(coder.get(), size);
    out.resize(static_cast<qsizetype>(used + room));
    const size_t written =
        libdeflate_zlib_compress(coder.get(), rows.get(), size, out.data() + used, room);
    out.truncate(static_cast<qsizetype>(used + written));
    chunk.end();
    return true;
}

QImage readable(const QImage& image) {
    switch (image.format()) {
        case QImage::Format_RGB32:
        case QImage::Format_ARGB32:
        case QImage::Format_ARGB32_Premultiplied:
            return image;
        default:
            return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                 : QImage::Format_RGB32);
    }
}

bool isOpaque(const QImage& image) {
    if (image.format() == QImage::Format_RGB32) return true;
    for (int y = 0; y < image.height(); ++y)
        if (!PngFilter::isOpaque(reinterpret_cast<const uint32_t*>(image.constScanLine(y)),
                                 static_cast<size_t>(image.width())))
            return false;
    return true;
}

QByteArray encoded(const QImage& image, PngEncoder::Options options) {
    const auto pixels = static_cast<size_t>(image.width()) * static_cast<size_t>(image.height());
    PngLayout layout = {&image, nullptr, !isOpaque(image)};
    std::optional<PngPalette> palette;
    if (options.mayIndexColors && !layout.hasAlpha && pixels >= kSmallestIndexed)
        palette = PngPalette::of(image);
    layout.palette = palette ? &*palette : nullptr;
    if (layout.rowBytes() > kLargestRow) return {};

    QByteArray out("\x89PNG\r\n\x1a\n", 8);
    appendHeader(layout, out);
    if (image.devicePixelRatio() != 1) appendResolution(image, out);
    if (palette) appendPalette(*palette, out);
    const bool inOnePiece = (options.goal == PngEncoder::Goal::Size || pixels <= kLargestSmall) &&
                            layout.filteredBytes() * layout.rows() <= kLargestChunk;
    if (!(inOnePiece && appendWhole(layout, options.goal, out)) && !appendStripes(layout, out))
        return {};
    PngChunk("IEND", out).end();
    out.squeeze();
    return out;
}

}  // namespace

QByteArray PngEncoder::encode(const QImage& image, Options options) {
    if (image.isNull()) return {};
    try {
        const QImage source = readable(image);
        return source.isNull() ? QByteArray() : encoded(source, options);
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace vorla
