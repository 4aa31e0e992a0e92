#include "toolbar/popover/VLPopoverLineColorViewForTern.h"

#include <algorithm>
#include <string>

#include "theme/HexColor.h"
#include "theme/VLCaptureThemeManager.h"

VLPopoverLineColorViewForTern::VLPopoverLineColorViewForTern(QWidget* superview)
    : VLPopoverLineColorView(superview) {
    for (const QColor& color : availableColorArray()) {
        auto* button = new VLPopoverColorButtonForTern(this);
        button->action = [this, button](VLButton&) { onLineColorButtonClicked(button); };
        button->setAccessibleValue("Color", color.name());
        buttonArray_.push_back(button);
    }
    VLPopoverLineColorViewForTern::configAppearanceAndLayout();
}

const std::vector<QColor>& VLPopoverLineColorViewForTern::availableColorArray() {
    static const std::vector<QColor> colors = [] {
        std::vector<QColor> made;
        for (const char* text : {"#ff2600", "#00b4ff", "#61ed00", "#ffeb00", "#676767", "#ffffff"})
            made.push_back(hx_colorWithHexString(QString::fromLatin1(text)));
        return made;
    }();
    return colors;
}

QColor VLPopoverLineColorViewForTern::selectedColor() const {
    return selectedButton_ ? selectedButton_->color() : QColor();
}

void VLPopoverLineColorViewForTern::setSelectedColor(const QColor& color) {
    const auto& colors = availableColorArray();
    // Colours of other origin hold their components in another precision.
    const auto found = std::ranges::find(colors, color.rgba(), &QColor::rgba);
    setSelectedButton(buttonArray_[found == colors.end() ? 0 : found - colors.begin()]);
}

void VLPopoverLineColorViewForTern::setSelectedButton(VLPopoverColorButtonForTern* button) {
    if (button == selectedButton_) return;
    if (selectedButton_) selectedButton_->setIsSelected(false);
    selectedButton_ = button;
    selectedButton_->setIsSelected(true);
}

void VLPopoverLineColorViewForTern::onLineColorButtonClicked(VLPopoverColorButtonForTern* button) {
    setSelectedButton(button);
    if (const auto heard = delegate()) heard->colorDidChange(button->color());
}

void VLPopoverLineColorViewForTern::configAppearanceAndLayout() {
    VLPopoverLineColorView::configAppearanceAndLayout();
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    for (size_t i = 0; i < buttonArray_.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        buttonArray_[i]->setFrame(
            theme.themedFrameWithKey("VLPopoverLineColorButton" + number + "Frame"));
        buttonArray_[i]->setColor(availableColorArray()[i]);
    }
    setNeedsDisplay();
}
