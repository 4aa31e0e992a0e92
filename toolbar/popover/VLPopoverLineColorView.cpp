#include "toolbar/popover/VLPopoverLineColorView.h"

#include "theme/VLCaptureThemeManager.h"

VLSize VLPopoverLineColorView::viewSize() const {
    return VLCaptureThemeManager::sharedInstance().themedSizeWithKey("VLPopoverLineColorViewSize");
}

void VLPopoverLineColorView::configAppearanceAndLayout() {
    setFrame(VLRect::make(frame().origin(), viewSize()));
}
