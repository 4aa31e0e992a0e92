#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "platform/base/geometry.h"
#include "selection/VLControlPoint.h"

/// What a drag would do.
enum VLSelectedItemType : uint64_t {
    VLSelectedItemTypeNone = 0,  ///< nothing selected: snap to windows, a drag makes a rectangle
    VLSelectedItemTypeIdle = 1,  ///< the pointer is not on the rectangle
    VLSelectedItemTypeMove = 2,
    VLSelectedItemTypeCornerResize = 3,
    VLSelectedItemTypeHorizontalResize = 4,
    VLSelectedItemTypeVerticalResize = 5,
};

namespace vorla {

// The geometry of selecting a rectangle on one screen, as pure functions. Points, local to the
// screen, y upward.

/// The lines that edges of selections lie on: whole points where a point is a whole number of
/// device pixels, else device pixels; and in both cases the screen's own edges.
struct SelectionGrid {
    double linesPerPoint = 1.0;
    VLSize screen;  ///< empty: without edges

    static SelectionGrid of(double scale, VLSize screen);

    /// The rectangle with all edges moved inwards to the next line.
    [[nodiscard]] VLRect aligned(const VLRect& rect) const;
    /// The upper left corner of the cell that a point is in.
    [[nodiscard]] VLPoint cell(VLPoint point) const;
    /// What a pointer there spans to: the cell's upper left corner, and the screen's edge in the
    /// last column and row, for the pointer cannot go further and the user who pushes it there
    /// wants all of the screen.
    [[nodiscard]] VLPoint corner(VLPoint point) const;
};

enum class ControlPointKind { Corner, Vertical, Horizontal };

/// The eight control points of a rectangle in the order of their types.
std::array<VLPoint, 8> controlPointsOf(const VLRect& rect);
/// Type of the point that stays while the one of `type` (0 to 7) is dragged: the opposite corner of
/// a corner, a corner of the opposite edge of an edge.
uint64_t fixedPointType(uint64_t type);
/// The first control point of that kind, in the order of types, whose zone of 20 points square
/// holds the point.
std::optional<uint64_t> controlPointAt(const VLRect& aligned, VLPoint point, ControlPointKind kind);

/// The rectangle that a drag makes. `fixed` is the point that stays, `from` and `to` the pointer
/// before and now, `selected` the rectangle so far.
VLRect draggedRect(VLSelectedItemType type, VLPoint fixed, VLPoint from, VLPoint to,
                   const VLRect& selected, const SelectionGrid& grid);

/// How far the parts of a drawn selection reach beyond its edges and points.
struct SelectionReach {
    double border = 0.0;
    double dot = 0.0;  ///< edge of the square around a control point
};

/// What has to be drawn again when the selection goes from one aligned rectangle to another: what
/// only one of them covers, and both borders and sets of control points. The clear inside that both
/// share is left alone, however large it is.
std::vector<VLRect> damageOfChange(const VLRect& from, const VLRect& to,
                                   const SelectionReach& reach);

}  // namespace vorla
