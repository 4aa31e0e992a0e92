#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

namespace vorla {

/// Where 32-bit pixels are written to: the first one, and the bytes from a row to the next.
struct PixelTarget {
    uchar* first = nullptr;
    qsizetype bytesPerLine = 0;

    PixelTarget(uchar* pixel, qsizetype lineBytes) : first(pixel), bytesPerLine(lineBytes) {}
    /// The picture's pixel `at`.
    explicit PixelTarget(QImage& image, QPoint at = {})
        : first(image.bits() + at.y() * image.bytesPerLine() + at.x() * qsizetype{4}),
          bytesPerLine(image.bytesPerLine()) {}
};

/// Copies a rectangle (device pixels, y downward, inside the source's bounds) of an opaque 32-bit
/// picture to a target that it must fit into, blended with a translucent colour on the way: as fast
/// as a plain copy, so that no dimmed twin of the screen has to be made and kept. A wholly
/// transparent colour leaves the pixels as they are; without an alpha byte of their own, they come
/// out opaque. Any thread.
void copyDimmed(const QImage& source, const QRect& rect, const QColor& color,
                const PixelTarget& target);

}  // namespace vorla
