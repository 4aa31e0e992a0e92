#pragma once

#include <QColor>
#include <QImage>
#include <QRect>

namespace vorla {

/// Copies a rectangle (device pixels, y downward, inside both pictures' bounds) of an opaque 32-bit
/// picture into `target` at its upper left corner, blended with a translucent colour on the way: as
/// fast as a plain copy, so that no dimmed twin of the screen has to be made and kept. `target` is
/// an opaque 32-bit picture of at least the rectangle's size.
void copyDimmed(const QImage& source, const QRect& rect, const QColor& color, QImage& target);

}  // namespace vorla
