#include "toolbar/popover/VLPopoverLineColorViewForIbis.h"

#include "platform/base/VLLog.h"
#include "toolbar/popover/VLPopoverType.h"

namespace {

constexpr std::array<std::array<int, 3>, 10> availableColors{{
    {255, 52, 64},
    {255, 93, 149},
    {210, 85, 208},
    {13, 169, 214},
    {0, 163, 69},
    {255, 207, 80},
    {255, 102, 49},
    {153, 153, 153},
    {0, 0, 0},
    {255, 255, 255},
}};

}  // namespace

VLPopoverLineColorViewForIbis::VLPopoverLineColorViewForIbis(QWidget* superview)
    : VLPopoverLineColorView(superview),
      colorButton_(new VLPopoverButton({0.0, 10.0, 62.0, 20.0}, VLPopoverTypeLineColor, this)),
      pullDownArrowButton_(new VLPopoverButton({72.0, 17.0, 15.0, 8.0}, VLPopoverTypeNone, this)),
      colorMenu_(new VLPopoverMenu) {
    pullDownArrowButton_->setAccessibleValue("Color", {});
    for (VLPopoverButton* button : {colorButton_, pullDownArrowButton_})
        button->action = [this](VLButton&) { showPopoverColorMenu(); };
    for (const auto& [red, green, blue] : availableColors) {
        auto* item = new VLPopoverColorButton;
        item->setSelectedColor(QColor(red, green, blue));
        item->setAccessibleValue("Color", item->selectedColor().name());
        item->action = [this, item](VLButton&) { colorButtonDidClick(item); };
        colorMenu_->addItem(item);
        items_.push_back(item);
    }
    VLPopoverLineColorViewForIbis::configAppearanceAndLayout();
}

VLPopoverLineColorViewForIbis::~VLPopoverLineColorViewForIbis() {
    if (!colorMenu_) return;
    colorMenu_->cancelTracking();
    colorMenu_->closePanel();
}

void VLPopoverLineColorViewForIbis::hideMenu() {
    if (colorMenu_) colorMenu_->cancelTracking();
}

void VLPopoverLineColorViewForIbis::showPopoverColorMenu() {
    const VLRect button = colorButton_->frame();
    if (colorMenu_) colorMenu_->popUpMenuAtLocation({button.x, button.y - 5.0}, *this);
}

void VLPopoverLineColorViewForIbis::colorButtonDidClick(const VLPopoverColorButton* button) {
    const QColor color = button->selectedColor();
    hideMenu();
    setSelectedColor(color);
    if (const auto heard = delegate()) heard->colorDidChange(color);
}

void VLPopoverLineColorViewForIbis::configAppearanceAndLayout() {
    VLLog("<VLPopoverLineColorViewForIbis> %s", __func__);
    VLPopoverLineColorView::configAppearanceAndLayout();
    if (colorMenu_) {
        colorMenu_->configAppearanceAndLayout();
        for (auto* item : items_) item->configAppearanceAndLayout();
    }
    colorButton_->configAppearanceAndLayout();
    pullDownArrowButton_->configAppearanceAndLayout();
    setNeedsDisplay();
}
