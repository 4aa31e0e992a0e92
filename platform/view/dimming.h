#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

namespace vorla {

// Both copy a rectangle (device pixels, y downward, inside the source's bounds) of an opaque 32-bit
// picture into another 32-bit picture, where its upper left corner comes to `at`. The rectangle
// must fit into the target there. Without an alpha byte of their own, the pixels come out opaque.

/// The pixels blended with a translucent colour on the way: as fast as a plain copy, so that no
/// dimmed twin of the screen has to be made and kept.
void copyDimmed(const QImage& source, const QRect& rect, const QColor& color, QImage& target,
                QPoint at = {});
/// The pixels as they are.
void copyPixels(const QImage& source, const QRect& rect, QImage& target, QPoint at = {});

}  // namespace vorla
