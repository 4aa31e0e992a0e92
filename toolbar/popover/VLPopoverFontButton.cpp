#include "toolbar/popover/VLPopoverFontButton.h"

#include <QPainter>

#include "platform/base/Bundle.h"
#include "platform/view/drawing.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/popover/VLPopoverFontSizeType.h"
#include "toolbar/popover/popoverFont.h"

VLPopoverFontButton::VLPopoverFontButton(const VLRect& frame, uint64_t type, QWidget* superview)
    : VLPickerButton(frame, superview) {
    setType(type);
    configAppearanceAndLayout();
}

void VLPopoverFontButton::setType(uint64_t type) {
    type_ = type;
    text_ = QString::fromStdString(labelOfButtonType(type));
    setAccessibleValue("Font Size", text_);
    setNeedsDisplay();
}

void VLPopoverFontButton::configAppearanceAndLayout() {
    arrowImage_ = VLCaptureThemeManager::sharedInstance().themedImageWithKey(
        "VLPopoverPullDownArrow", backingScale());
    setNeedsDisplay();
}

void VLPopoverFontButton::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(backgroundColor_);
    painter.drawRoundedRect(QRectF(0.0, 0.0, bounds().width, bounds().height), 2.0, 2.0);
    const QSizeF arrow = arrowImage_.deviceIndependentSize();
    vorla::drawImage(painter, arrowImage_, {57.0, 6.0, arrow.width(), arrow.height()});
    if (text_.isEmpty()) return;
    const QFont font = popoverFont(12.0);
    // Latin words end next to the arrow, the shorter Chinese ones stand in the middle.
    const bool english = vorla::Bundle::framework().localizedString("Language") == "English";
    const double x = english ? bounds().width - 25.0 - vorla::textSize(text_, font).width : 28.0;
    vorla::drawText(painter, text_, font, Qt::black, {x, 3.0});
}
