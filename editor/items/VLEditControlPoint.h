#pragma once

#include <cstdint>

#include "platform/base/geometry.h"

/// The eight handles of an item, along the rows from the top left; top is the larger y.
enum VLEditControlPointType : uint64_t {
    VLEditControlPointTopLeft = 0,
    VLEditControlPointTop = 1,
    VLEditControlPointTopRight = 2,
    VLEditControlPointLeft = 3,
    VLEditControlPointRight = 4,
    VLEditControlPointBottomLeft = 5,
    VLEditControlPointBottom = 6,
    VLEditControlPointBottomRight = 7,
};

/// A handle of an item.
class VLEditControlPoint {
 public:
    VLEditControlPoint(VLPoint point, uint64_t type) : type_(type), point_(point) {}

    [[nodiscard]] uint64_t type() const { return type_; }
    /// In the item's own coordinates.
    [[nodiscard]] VLPoint point() const { return point_; }

 private:
    uint64_t type_;
    VLPoint point_;
};
