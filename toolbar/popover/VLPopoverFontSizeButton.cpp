#include "toolbar/popover/VLPopoverFontSizeButton.h"

#include <QPainter>

#include "platform/view/drawing.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/popover/popoverFont.h"

VLPopoverFontSizeButton::VLPopoverFontSizeButton(uint64_t fontSize, QWidget* superview)
    : VLPickerButton({0.0, 0.0, 64.0, 20.0}, superview), fontSize_(fontSize) {
    setAccessibleValue("Font Size", QString::number(fontSize));
}

void VLPopoverFontSizeButton::setIsBorder(bool value) {
    isBorder_ = value;
    setNeedsDisplay();
}

void VLPopoverFontSizeButton::configAppearanceAndLayout() {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    hoverColor_ = theme.themedColorWithKey("VLPopoverMenu_HoverColor");
    borderColor_ = theme.themedColorWithKey("VLPopoverFontSizeBorderColor");
    fillColor_ = theme.themedColorWithKey("VLPopoverMenu_BackgroundColor");
    fontColor_ = theme.themedColorWithKey("VLPopoverFontSize_FontColor");
    setNeedsDisplay();
}

void VLPopoverFontSizeButton::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    const QRectF all(0.0, 0.0, bounds().width, bounds().height);
    for (const QColor& color : {fillColor_, isHover() ? hoverColor_ : QColor()})
        if (color.isValid()) painter.fillRect(all, color);
    vorla::drawText(painter, QString::number(fontSize_), popoverFont(12.0), fontColor_,
                    {13.0, 4.0});
    if (!isBorder_ || !borderColor_.isValid()) return;
    painter.setRenderHint(QPainter::Antialiasing);
    QColor opaque = borderColor_;
    opaque.setAlpha(255);
    painter.setPen(QPen(opaque, 1.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(all.adjusted(0.5, 0.5, -0.5, -0.5), 1.0, 1.0);
}
