#include "editor/items/CurvePath.h"

#include <algorithm>
#include <cmath>

namespace vorla {
namespace {

// Hit tests are exact to a fiftieth of a point.
constexpr double kHitTolerance = 0.02;
constexpr int kMaxPieces = 256;

VLRect spanning(std::initializer_list<VLPoint> points) {
    VLPoint low = *points.begin();
    VLPoint high = low;
    for (const VLPoint& point : points) {
        low = {std::min(low.x, point.x), std::min(low.y, point.y)};
        high = {std::max(high.x, point.x), std::max(high.y, point.y)};
    }
    return {low.x, low.y, high.x - low.x, high.y - low.y};
}

double squaredDistance(VLPoint point, VLPoint from, VLPoint to) {
    const VLPoint along = to - from;
    const VLPoint offset = point - from;
    const double length2 = along.x * along.x + along.y * along.y;
    const double t = length2 > 0
                         ? std::clamp((offset.x * along.x + offset.y * along.y) / length2, 0.0, 1.0)
                         : 0.0;
    const VLPoint gap{offset.x - t * along.x, offset.y - t * along.y};
    return gap.x * gap.x + gap.y * gap.y;
}

// Unlike an intersection of rectangles this counts one without width or height as well.
bool within(const VLRect& rect, VLPoint point, double distance) {
    return point.x >= rect.x - distance && point.x <= rect.maxX() + distance &&
           point.y >= rect.y - distance && point.y <= rect.maxY() + distance;
}

}  // namespace

VLRect CurvePath::Segment::bounds() const {
    return spanning({start, control1, control2, end});
}

VLPoint CurvePath::Segment::at(double t) const {
    const double s = 1 - t;
    const double a = s * s * s;
    const double b = 3 * s * s * t;
    const double c = 3 * s * t * t;
    const double d = t * t * t;
    return {a * start.x + b * control1.x + c * control2.x + d * end.x,
            a * start.y + b * control1.y + c * control2.y + d * end.y};
}

int CurvePath::Segment::pieceCount(double tolerance) const {
    // A chord over 1/n of the parameter is off by at most |B''| / (8 n²), and |B''| by at most six
    // times the larger second difference of the control points.
    const auto bend = [](VLPoint a, VLPoint b, VLPoint c) {
        return std::hypot(a.x - 2 * b.x + c.x, a.y - 2 * b.y + c.y);
    };
    const double most = std::max(bend(start, control1, control2), bend(control1, control2, end));
    const double pieces = std::ceil(std::sqrt(0.75 * most / tolerance));
    return static_cast<int>(std::clamp(pieces, 1.0, static_cast<double>(kMaxPieces)));
}

void CurvePath::curveTo(VLPoint control1, VLPoint control2, VLPoint end) {
    const VLPoint start = segments_.empty() ? start_ : segments_.back().end;
    segments_.push_back({start, control1, control2, end});
    VLRect added = segments_.back().bounds();
    if (segments_.size() > 1) {
        const double left = std::min(bounds_.x, added.x);
        const double bottom = std::min(bounds_.y, added.y);
        added = {left, bottom, std::max(bounds_.maxX(), added.maxX()) - left,
                 std::max(bounds_.maxY(), added.maxY()) - bottom};
    }
    bounds_ = added;
}

bool CurvePath::isNear(VLPoint point, double distance) const {
    if (segments_.empty() || !within(bounds_, point, distance)) return false;
    const double limit = distance * distance;
    for (const Segment& segment : segments_) {
        if (!within(segment.bounds(), point, distance)) continue;
        bool near = false;
        segment.flatten(kHitTolerance, [&](VLPoint from, VLPoint to) {
            near = near || squaredDistance(point, from, to) <= limit;
        });
        if (near) return true;
    }
    return false;
}

}  // namespace vorla
