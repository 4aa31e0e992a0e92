#include "selection/SelectionGeometry.h"

#include <algorithm>
#include <cmath>

#include "windows/VLCaptureUtilities.h"

namespace vorla {
namespace {

/// Reach of a control point for the pointer, whatever size its dot is drawn in.
constexpr double hitSize = 20.0;
/// What division by a scale may leave, in cells of a grid.
constexpr double noise = 1e-3;

constexpr std::array<uint64_t, 8> fixedPointTypes = {
    VLControlPointBottomRight, VLControlPointBottomLeft, VLControlPointBottomLeft,
    VLControlPointBottomRight, VLControlPointBottomLeft, VLControlPointTopRight,
    VLControlPointTopLeft,     VLControlPointTopLeft};

ControlPointKind kindOf(uint64_t type) {
    if (type == VLControlPointTopMiddle || type == VLControlPointBottomMiddle)
        return ControlPointKind::Vertical;
    if (type == VLControlPointLeftMiddle || type == VLControlPointRightMiddle)
        return ControlPointKind::Horizontal;
    return ControlPointKind::Corner;
}

double lineBelow(double value, double linesPerPoint) {
    return std::floor(value * linesPerPoint + noise) / linesPerPoint;
}

double lineAbove(double value, double linesPerPoint) {
    return std::ceil(value * linesPerPoint - noise) / linesPerPoint;
}

/// What of `a` is not in `b`, as up to four rectangles.
void appendDifference(std::vector<VLRect>& list, const VLRect& a, const VLRect& b) {
    const VLRect common = a.intersection(b);
    if (common.isEmpty()) {
        if (!a.isEmpty()) list.push_back(a);
        return;
    }
    const auto append = [&list](const VLRect& r) {
        if (!r.isEmpty()) list.push_back(r);
    };
    append({a.x, a.y, a.width, common.y - a.y});
    append({a.x, common.maxY(), a.width, a.maxY() - common.maxY()});
    append({a.x, common.y, common.x - a.x, common.height});
    append({common.maxX(), common.y, a.maxX() - common.maxX(), common.height});
}

/// Moves the rectangle inside the screen, and back onto the grid if that took it off.
VLRect movedRect(const VLRect& rect, const SelectionGrid& grid) {
    const VLRect kept = VLCaptureUtilities::fixedRect(rect, VLRect::make({}, grid.screen));
    VLPoint origin = kept.origin();
    if (kept.x != rect.x) origin.x = lineBelow(kept.x, grid.linesPerPoint);
    if (kept.y != rect.y) origin.y = lineBelow(kept.y, grid.linesPerPoint);
    return VLRect::make(origin, kept.size());
}

}  // namespace

SelectionGrid SelectionGrid::of(double scale, VLSize screen) {
    const bool whole = scale == std::floor(scale);
    return {whole ? 1.0 : scale, screen};
}

VLRect SelectionGrid::aligned(const VLRect& rect) const {
    if (rect.isNull()) return rect;
    const auto high = [this](double value, double edge) {
        const bool atEdge = edge > 0.0 && std::abs(value - edge) * linesPerPoint <= noise;
        return atEdge ? edge : lineBelow(value, linesPerPoint);
    };
    const double left = lineAbove(rect.x, linesPerPoint);
    const double bottom = lineAbove(rect.y, linesPerPoint);
    return {left, bottom, std::max(0.0, high(rect.maxX(), screen.width) - left),
            std::max(0.0, high(rect.maxY(), screen.height) - bottom)};
}

VLPoint SelectionGrid::cell(VLPoint point) const {
    return {lineBelow(point.x, linesPerPoint), lineAbove(point.y, linesPerPoint)};
}

VLPoint SelectionGrid::corner(VLPoint point) const {
    VLPoint corner = cell(point);
    const double last = (1.0 + noise) / linesPerPoint;
    if (corner.x >= screen.width - last && corner.x < screen.width) corner.x = screen.width;
    if (corner.y <= last && corner.y > 0.0) corner.y = 0.0;
    return corner;
}

std::array<VLPoint, 8> controlPointsOf(const VLRect& r) {
    return {{{r.x, r.maxY()},
             {r.midX(), r.maxY()},
             {r.maxX(), r.maxY()},
             {r.x, r.midY()},
             {r.maxX(), r.midY()},
             {r.x, r.y},
             {r.midX(), r.y},
             {r.maxX(), r.y}}};
}

uint64_t fixedPointType(uint64_t type) {
    return fixedPointTypes.at(type);
}

std::optional<uint64_t> controlPointAt(const VLRect& aligned, VLPoint point,
                                       ControlPointKind kind) {
    const auto points = controlPointsOf(aligned);
    for (uint64_t type = 0; type < points.size(); ++type)
        if (kindOf(type) == kind &&
            VLCaptureUtilities::rectWithCenter(points[type], hitSize, hitSize).containsPoint(point))
            return type;
    return std::nullopt;
}

VLRect draggedRect(VLSelectedItemType type, VLPoint fixed, VLPoint from, VLPoint to,
                   const VLRect& selected, const SelectionGrid& grid) {
    const VLPoint corner = grid.corner(to);
    VLRect result;
    switch (type) {
        case VLSelectedItemTypeNone:
        case VLSelectedItemTypeCornerResize:
            result = VLCaptureUtilities::minRectWithFirstPoint(fixed, corner);
            break;
        case VLSelectedItemTypeMove: {
            const VLPoint moved = grid.cell(to) - grid.cell(from);
            result = movedRect(selected.offsetBy(moved.x, moved.y), grid);
            break;
        }
        case VLSelectedItemTypeHorizontalResize:
            result = VLCaptureUtilities::minRectWithFirstPoint(fixed, {corner.x, selected.maxY()});
            break;
        case VLSelectedItemTypeVerticalResize:
            result = VLCaptureUtilities::minRectWithFirstPoint(fixed, {selected.maxX(), corner.y});
            break;
        case VLSelectedItemTypeIdle:
            break;
    }
    return VLCaptureUtilities::cropRect(result, VLRect::make({}, grid.screen));
}

std::vector<VLRect> damageOfChange(const VLRect& from, const VLRect& to,
                                   const SelectionReach& reach) {
    std::vector<VLRect> damage;
    appendDifference(damage, from, to);
    appendDifference(damage, to, from);
    const double border = reach.border;
    for (const VLRect& r : {from, to}) {
        if (r.isZero()) continue;
        const VLRect outer = r.insetBy(-border, -border);
        damage.push_back({outer.x, r.y - border, outer.width, 2.0 * border});
        damage.push_back({outer.x, r.maxY() - border, outer.width, 2.0 * border});
        damage.push_back({r.x - border, outer.y, 2.0 * border, outer.height});
        damage.push_back({r.maxX() - border, outer.y, 2.0 * border, outer.height});
        for (const VLPoint& point : controlPointsOf(r))
            damage.push_back(VLCaptureUtilities::rectWithCenter(point, reach.dot, reach.dot));
    }
    return damage;
}

}  // namespace vorla
