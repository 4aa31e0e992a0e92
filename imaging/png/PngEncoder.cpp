#include "imaging/png/PngEncoder.h"

#include <exception>
#include <optional>

#include "imaging/ImageHelpers.h"
#include "imaging/png/PngChunk.h"
#include "imaging/png/PngFilter.h"
#include "imaging/png/PngParts.h"
#include "imaging/png/PngStripes.h"

namespace vorla {
namespace {

constexpr size_t kSmallestIndexed = 4096;  // pixels; below, a palette is not worth its bytes
constexpr size_t kLargestSmall = size_t{1} << 20;  // pixels
constexpr size_t kLargestRow = size_t{1} << 28;
constexpr size_t kLargestChunk = size_t{1} << 30;

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
    const bool isSmall = (options.goal == PngEncoder::Goal::Size || pixels <= kLargestSmall) &&
                         layout.filteredBytes() * layout.rows() <= kLargestChunk;
    if (!(isSmall && appendParts(layout, options.goal, out)) && !appendStripes(layout, out))
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
