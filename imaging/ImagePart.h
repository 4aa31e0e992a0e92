#pragma once

#include <QImage>

#include "platform/base/geometry.h"

namespace vorla {

/// A rectangle of a picture without copying a pixel: the result reads the original's memory and
/// keeps it alive. `rect` is in points with the origin at the picture's lower left, made whole in
/// device pixels outwards and cut to the picture. Null for an empty result.
QImage imagePart(const QImage& image, const VLRect& rect);

}  // namespace vorla
