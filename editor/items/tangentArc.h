#pragma once

#include <QPainterPath>

#include "platform/base/geometry.h"

namespace vorla {

/// Rounds a corner: a line from the path's present end towards `corner`, and an arc of `radius`
/// that touches that line and the one from `corner` to `next`. It ends where the arc touches the
/// second line. Without a corner to round (no radius, points in one line) it is a line to `corner`.
void addArcToPoint(QPainterPath& path, VLPoint corner, VLPoint next, double radius);

}  // namespace vorla
