#include "toolbar/popover/VLPopoverMenu.h"

#include <algorithm>

#include "theme/VLCaptureThemeManager.h"

namespace {

constexpr double cornerRadius = 3.0;

}  // namespace

VLPopoverMenu::VLPopoverMenu() : background_(new VLRoundRectView) {
    background_->setCornerRadius(cornerRadius);
    setContentView(background_);
    configAppearanceAndLayout();
}

void VLPopoverMenu::addItem(VLView* item) {
    if (!item) return;
    itemArray_.push_back(item);
    background_->addSubview(item);
}

VLSize VLPopoverMenu::menuSize() const {
    if (itemArray_.empty()) return {};
    VLSize size;
    for (const VLView* item : itemArray_) {
        size.width = std::max(size.width, item->frame().width);
        size.height += item->frame().height;
    }
    return {size.width + 2.0, size.height + 2.0 * cornerRadius};
}

void VLPopoverMenu::prepareToOpen() {
    const VLSize size = menuSize();
    if (size == frame().size()) return;
    setFrameSize(size);
    updateItemFrame();
}

void VLPopoverMenu::updateItemFrame() {
    double y = frame().height - cornerRadius;
    for (VLView* item : itemArray_) {
        y -= item->frame().height;
        item->setFrameOrigin({1.0, y});
    }
}

void VLPopoverMenu::configAppearanceAndLayout() {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    background_->setBackgroundColor(theme.themedColorWithKey("VLPopoverMenu_BackgroundColor"));
    background_->setBorderColor(theme.themedColorWithKey("VLPopoverMenu_BorderColor"));
}
