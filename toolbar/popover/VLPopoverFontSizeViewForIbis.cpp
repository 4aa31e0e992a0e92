#include "toolbar/popover/VLPopoverFontSizeViewForIbis.h"

#include <QPainter>

#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"
#include "platform/view/drawing.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/popover/VLPopoverType.h"
#include "toolbar/popover/popoverFont.h"

VLPopoverFontSizeViewForIbis::VLPopoverFontSizeViewForIbis(QWidget* superview)
    : VLPopoverFontSizeView(superview),
      fontSizeButton_(new VLPopoverButton({0.0, 10.0, 62.0, 20.0}, VLPopoverTypeFontSize, this)),
      pullDownArrowButton_(new VLPopoverButton({72.0, 17.0, 15.0, 8.0}, VLPopoverTypeNone, this)),
      fontSizeMenu_(new VLPopoverMenu) {
    pullDownArrowButton_->setAccessibleValue("Font Size", {});
    for (VLPopoverButton* button : {fontSizeButton_, pullDownArrowButton_})
        button->action = [this](VLButton&) { showPopoverFontSizeMenu(); };
    for (const uint64_t size : {9, 10, 11, 12, 13, 14, 18, 24, 36, 48, 64, 72, 96}) {
        auto* item = new VLPopoverFontSizeButton(size);
        item->action = [this, item](VLButton&) { fontSizeButtonDidClick(item); };
        fontSizeMenu_->addItem(item);
        items_.push_back(item);
    }
    VLPopoverFontSizeViewForIbis::configAppearanceAndLayout();
}

VLPopoverFontSizeViewForIbis::~VLPopoverFontSizeViewForIbis() {
    if (!fontSizeMenu_) return;
    fontSizeMenu_->cancelTracking();
    fontSizeMenu_->closePanel();
}

void VLPopoverFontSizeViewForIbis::hideMenu() {
    if (fontSizeMenu_) fontSizeMenu_->cancelTracking();
}

VLSize VLPopoverFontSizeViewForIbis::viewSize() const {
    return VLCaptureThemeManager::sharedInstance().themedSizeWithKey("VLPopoverLineWidthViewSize");
}

void VLPopoverFontSizeViewForIbis::showPopoverFontSizeMenu() {
    const VLRect button = fontSizeButton_->frame();
    if (fontSizeMenu_) fontSizeMenu_->popUpMenuAtLocation({button.x, button.y - 5.0}, *this);
}

void VLPopoverFontSizeViewForIbis::fontSizeButtonDidClick(const VLPopoverFontSizeButton* button) {
    const uint64_t size = button->fontSize();
    hideMenu();
    setFontSize(size);
    if (const auto heard = delegate()) heard->fontSizeDidChange(size);
}

void VLPopoverFontSizeViewForIbis::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    const auto unit = vorla::Bundle::framework().localizedString("pt");
    vorla::drawText(painter, QString::fromStdString(unit), popoverFont(11.0), fontColor_,
                    {32.0, 12.0});
}

void VLPopoverFontSizeViewForIbis::configAppearanceAndLayout() {
    VLLog("<VLPopoverFontSizeViewForIbis> %s", __func__);
    VLPopoverFontSizeView::configAppearanceAndLayout();
    fontColor_ =
        VLCaptureThemeManager::sharedInstance().themedColorWithKey("VLPopoverFontSize_FontColor");
    fontSizeButton_->configAppearanceAndLayout();
    if (fontSizeMenu_) {
        fontSizeMenu_->configAppearanceAndLayout();
        for (auto* item : items_) item->configAppearanceAndLayout();
    }
    pullDownArrowButton_->configAppearanceAndLayout();
    setNeedsDisplay();
}
