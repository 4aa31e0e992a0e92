#include "toolbar/popover/VLPopoverLineWidthView.h"

#include <algorithm>
#include <array>

#include "platform/base/VLLog.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

struct ButtonKeys {
    const char* frame;
    const char* value;
    const char* selectedImage;
    const char* normalImage;
};

constexpr std::array<ButtonKeys, 3> keysOfButtons{{
    {"VLPopoverLineWidthButton1Frame", "VLPopoverLineWidthButton1Value",
     "VLToolbarLineWidth3px_selected", "VLToolbarLineWidth3px_normal"},
    {"VLPopoverLineWidthButton2Frame", "VLPopoverLineWidthButton2Value",
     "VLToolbarLineWidth6px_selected", "VLToolbarLineWidth6px_normal"},
    {"VLPopoverLineWidthButton3Frame", "VLPopoverLineWidthButton3Value",
     "VLToolbarLineWidth9px_selected", "VLToolbarLineWidth9px_normal"},
}};

uint64_t widthOfKey(const char* key) {
    // A theme's slip must not become a number that no whole number can hold.
    const float value = VLCaptureThemeManager::sharedInstance().themedWeightWithKey(key);
    return static_cast<uint64_t>(std::clamp(value, 0.0F, 500.0F));
}

}  // namespace

VLPopoverLineWidthView::VLPopoverLineWidthView(QWidget* superview) : VLView({}, superview) {
    for (size_t i = 0; i < keysOfButtons.size(); ++i) {
        auto* button = new VLPopoverLineWidthButton(this);
        button->action = [this, button](VLButton&) { onLineWidthButtonClicked(button); };
        buttonArray_.push_back(button);
    }
    configAppearanceAndLayout();
}

uint64_t VLPopoverLineWidthView::defaultWidth() {
    return widthOfKey(keysOfButtons.front().value);
}

uint64_t VLPopoverLineWidthView::width() const {
    return selectedButton_ ? selectedButton_->width() : 0;
}

void VLPopoverLineWidthView::setWidth(uint64_t width) {
    for (auto* button : buttonArray_)
        if (button->width() == width) setSelectedButton(button);
}

void VLPopoverLineWidthView::setSelectedButton(VLPopoverLineWidthButton* button) {
    if (button == selectedButton_) return;
    if (selectedButton_) selectedButton_->setIsSelected(false);
    selectedButton_ = button;
    selectedButton_->setIsSelected(true);
}

void VLPopoverLineWidthView::onLineWidthButtonClicked(VLPopoverLineWidthButton* button) {
    setSelectedButton(button);
    if (const auto heard = delegate_.lock()) heard->widthDidChange(button->width());
}

void VLPopoverLineWidthView::configAppearanceAndLayout() {
    VLLog("<VLPopoverLineWidthView> %s", __func__);
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    setFrame(VLRect::make(frame().origin(), theme.themedSizeWithKey("VLPopoverLineWidthViewSize")));
    for (size_t i = 0; i < buttonArray_.size(); ++i) {
        const ButtonKeys& keys = keysOfButtons[i];
        VLPopoverLineWidthButton* button = buttonArray_[i];
        button->setFrame(theme.themedFrameWithKey(keys.frame));
        button->setWidth(widthOfKey(keys.value));
        button->setAccessibleValue("Line Width", QString::number(button->width()));
        button->setSelectedImage(theme.themedImageWithKey(keys.selectedImage, backingScale()));
        button->setNormalImage(theme.themedImageWithKey(keys.normalImage, backingScale()));
    }
    setNeedsDisplay();
}
