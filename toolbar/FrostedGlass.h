#pragma once

#include <QColor>
#include <QImage>

#include "platform/base/geometry.h"

namespace vorla {

/// A part of a picture as seen through frosted glass of a colour: blurred by three box filters (by
/// the central limit theorem close to a Gaussian) on a picture reduced in size, then covered by the
/// tint as far as its alpha says.
///
/// `part` is in points of the picture, origin at its lower left; what lies outside continues the
/// picture's edge. `radius` is the blur's standard deviation in points. The result has the part's
/// size in the picture's device pixels and its ratio; null for an empty part or picture.
QImage frostedGlass(const QImage& picture, const VLRect& part, double radius, const QColor& tint);

}  // namespace vorla
