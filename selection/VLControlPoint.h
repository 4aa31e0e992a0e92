#pragma once

#include <cstdint>

#include "platform/base/geometry.h"

/// Where a control point sits on its rectangle; also its place in a list of all eight. y is upward.
enum VLControlPointType : uint64_t {
    VLControlPointTopLeft = 0,
    VLControlPointTopMiddle = 1,
    VLControlPointTopRight = 2,
    VLControlPointLeftMiddle = 3,
    VLControlPointRightMiddle = 4,
    VLControlPointBottomLeft = 5,
    VLControlPointBottomMiddle = 6,
    VLControlPointBottomRight = 7,
};

/// A point of a rectangle that the user can take hold of.
struct VLControlPoint {
    VLPoint point;
    uint64_t type = VLControlPointTopLeft;
};
