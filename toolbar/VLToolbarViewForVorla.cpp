#include "toolbar/VLToolbarViewForVorla.h"

#include "theme/VLCaptureThemeManager.h"

VLToolbarViewForVorla::VLToolbarViewForVorla(const VLRect& frame) : VLToolbarView(frame) {
    setupFunctionButtons();
    VLToolbarViewForVorla::configAppearanceAndLayout();
}

void VLToolbarViewForVorla::configAppearanceAndLayout() {
    setBackgroundColor(VLCaptureThemeManager::sharedInstance().themedColorWithKey(
        "VLToolbarView_BackgroundColor"));
    configButtons();
    setNeedsDisplay();
}
