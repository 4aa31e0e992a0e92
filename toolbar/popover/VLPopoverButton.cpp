#include "toolbar/popover/VLPopoverButton.h"

#include <QPainter>

#include "platform/view/drawing.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/popover/VLPopoverType.h"
#include "toolbar/popover/popoverFont.h"

void VLPopoverButton::setSelectedColor(const QColor& color) {
    selectedColor_ = color;
    setAccessibleValue("Color", color.name());
    setNeedsDisplay();
}

void VLPopoverButton::setFontSize(uint64_t size) {
    fontSize_ = size;
    setAccessibleValue("Font Size", QString::number(size));
    setNeedsDisplay();
}

void VLPopoverButton::configAppearanceAndLayout() {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    colorBorderColor_ = theme.themedColorWithKey("VLPopoverLineColorBorderColor");
    fontBorderColor_ = theme.themedColorWithKey("VLPopoverFontSizeBorderColor");
    fontColor_ = theme.themedColorWithKey("VLPopoverFontSize_FontColor");
    arrowImage_ = theme.themedImageWithKey("VLPopoverPullDownArrow", backingScale());
    setNeedsDisplay();
}

void VLPopoverButton::mouseUp(const VLMouseEvent& event) {
    if (bounds().containsPoint(convertPointFromWindow(event.locationInWindow))) performAction();
}

void VLPopoverButton::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    painter.setRenderHint(QPainter::Antialiasing);
    const auto outline = [&painter](const QColor& color, const QBrush& inside) {
        painter.setBrush(inside);
        painter.setPen(color.isValid() ? QPen(color, 1.0) : QPen(Qt::NoPen));
        // On the pixels' middles, so that the border is one crisp line.
        painter.drawRoundedRect(QRectF(0.5, 0.5, 61.0, 19.0), 2.0, 2.0);
    };
    if (type_ & VLPopoverTypeLineColor && selectedColor_.isValid()) {
        outline(colorBorderColor_, selectedColor_);
    } else if (type_ & VLPopoverTypeFontSize && fontSize_ != 0) {
        vorla::drawText(painter, QString::number(fontSize_), popoverFont(11.0), fontColor_,
                        {17.0, 3.0});
        outline(fontBorderColor_, Qt::NoBrush);
    } else {
        vorla::drawImage(painter, arrowImage_, bounds());
    }
}
