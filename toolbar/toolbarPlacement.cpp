#include "toolbar/toolbarPlacement.h"

#include "windows/VLCaptureUtilities.h"

VLPoint toolbarOrigin(const VLRect& selectedRect, VLSize toolbarSize, const VLRect& bounds) {
    constexpr double gap = 10.0;
    const bool fitsBelow = selectedRect.y > toolbarSize.height;
    const VLPoint origin{
        selectedRect.maxX() - toolbarSize.width,
        fitsBelow ? selectedRect.y - (toolbarSize.height + gap) : selectedRect.y + gap};
    return VLCaptureUtilities::fixedPoint(origin, bounds);
}

PopoverArrow popoverArrow(const VLRect& buttonOnScreen, const VLRect& toolbarFrame) {
    constexpr double gap = 5.0;
    constexpr double lowestForBelow = 60.0;
    const double x = buttonOnScreen.midX() - 3.0;
    if (toolbarFrame.y <= lowestForBelow)
        return {{x, toolbarFrame.maxY() + gap}, VLPopoverArrowDirectionDown};
    return {{x, toolbarFrame.y - gap}, VLPopoverArrowDirectionUp};
}

VLPoint popoverOrigin(VLPoint arrowPoint, VLPopoverArrowDirection direction, VLSize popoverSize,
                      const VLRect& toolbarFrame) {
    double x = arrowPoint.x - popoverSize.width / 2.0;
    if (x < toolbarFrame.x) x = toolbarFrame.x;
    if (toolbarFrame.maxX() < x + popoverSize.width) x = toolbarFrame.maxX() - popoverSize.width;
    const bool above = direction == VLPopoverArrowDirectionDown;
    return {x, above ? arrowPoint.y : arrowPoint.y - popoverSize.height};
}
