#pragma once

#include "platform/base/geometry.h"
#include "toolbar/popover/VLPopoverType.h"

// Where the floating panels go. All rectangles and points are local to one screen, in points.

/// The tip of a popover's arrow and the way it points.
struct PopoverArrow {
    VLPoint point;
    VLPopoverArrowDirection direction = VLPopoverArrowDirectionUp;
};

/// The toolbar's origin next to a selection: 10 points below it and flush with its right edge, or,
/// where there is no room below, inside the selection 10 points above its bottom edge. Only the
/// origin is kept inside `bounds`, the surface's.
[[nodiscard]] VLPoint toolbarOrigin(const VLRect& selectedRect, VLSize toolbarSize,
                                    const VLRect& bounds);

/// The arrow of the popover of a button: under the toolbar, or over it when the toolbar is at most
/// 60 points above the screen's bottom.
[[nodiscard]] PopoverArrow popoverArrow(const VLRect& buttonOnScreen, const VLRect& toolbarFrame);

/// The popover's origin: centred on the arrow's tip, but inside the toolbar's horizontal extent.
[[nodiscard]] VLPoint popoverOrigin(VLPoint arrowPoint, VLPopoverArrowDirection direction,
                                    VLSize popoverSize, const VLRect& toolbarFrame);
