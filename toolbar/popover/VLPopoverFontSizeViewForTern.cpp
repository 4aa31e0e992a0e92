#include "toolbar/popover/VLPopoverFontSizeViewForTern.h"

#include "platform/base/VLLog.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/popover/VLPopoverFontSizeType.h"

namespace {

constexpr double gapToMenu = 8.0;
/// Up to this height of the button on the screen the menu opens upwards.
constexpr double lowestForBelow = 100.0;

}  // namespace

VLPopoverFontSizeViewForTern::VLPopoverFontSizeViewForTern(QWidget* superview)
    : VLPopoverFontSizeView(superview),
      chooseButton_(
          new VLPopoverFontButton({0.0, 9.0, 80.0, 20.0}, VLPopoverFontSizeTypeMedium, this)),
      fontSizeMenu_(new VLPopoverFontSizeMenuForTern) {
    chooseButton_->action = [this](VLButton&) { showPopoverFontSizeMenu(); };
    fontSizeMenu_->setFontSizeDelegate(this);
    VLPopoverFontSizeViewForTern::configAppearanceAndLayout();
}

VLPopoverFontSizeViewForTern::~VLPopoverFontSizeViewForTern() {
    if (!fontSizeMenu_) return;
    fontSizeMenu_->setFontSizeDelegate(nullptr);
    fontSizeMenu_->cancelTracking();
    fontSizeMenu_->closePanel();
}

const std::vector<uint64_t>& VLPopoverFontSizeViewForTern::availabeFontSizeArray() {
    static const std::vector<uint64_t> sizes{18, 24, 36};
    return sizes;
}

uint64_t VLPopoverFontSizeViewForTern::fontSize() const {
    return fontSizeOfButtonType(chooseButton_->type());
}

void VLPopoverFontSizeViewForTern::setFontSize(uint64_t fontSize) {
    chooseButton_->setType(buttonTypeOfFontSize(fontSize));
}

void VLPopoverFontSizeViewForTern::hideMenu() {
    if (fontSizeMenu_) fontSizeMenu_->cancelTracking();
}

VLSize VLPopoverFontSizeViewForTern::viewSize() const {
    return VLCaptureThemeManager::sharedInstance().themedSizeWithKey("VLPopoverFontSizeViewSize");
}

void VLPopoverFontSizeViewForTern::showPopoverFontSizeMenu() {
    VLLog("%s", __func__);
    if (!fontSizeMenu_) return;
    const VLRect button = chooseButton_->frame();
    const bool above = convertRectToWindow(button).y <= lowestForBelow;
    const double y = above ? button.maxY() + gapToMenu
                           : button.y - gapToMenu - VLPopoverFontSizeMenuForTern::menuSize.height;
    fontSizeMenu_->popUpMenuAtLocation({button.x, y}, *this);
}

void VLPopoverFontSizeViewForTern::fontSizeDidChange(uint64_t type) {
    chooseButton_->setType(type);
    if (const auto heard = delegate()) heard->fontSizeDidChange(fontSizeOfButtonType(type));
}

void VLPopoverFontSizeViewForTern::configAppearanceAndLayout() {
    VLPopoverFontSizeView::configAppearanceAndLayout();
    chooseButton_->configAppearanceAndLayout();
    if (fontSizeMenu_) fontSizeMenu_->configAppearanceAndLayout();
    setNeedsDisplay();
}
