#include "toolbar/popover/VLPopoverColorButton.h"

#include <QPainter>

#include "theme/VLCaptureThemeManager.h"

void VLPopoverColorButton::setSelectedColor(const QColor& color) {
    selectedColor_ = color;
    setNeedsDisplay();
}

void VLPopoverColorButton::configAppearanceAndLayout() {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    hoverColor_ = theme.themedColorWithKey("VLPopoverMenu_HoverColor");
    borderColor_ = theme.themedColorWithKey("VLPopoverLineColorBorderColor");
    setNeedsDisplay();
}

void VLPopoverColorButton::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    const VLRect all = bounds();
    if (isHover() && hoverColor_.isValid())
        painter.fillRect(QRectF(all.x, all.y, all.width, all.height), hoverColor_);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(selectedColor_.isValid() ? QBrush(selectedColor_) : QBrush(Qt::NoBrush));
    painter.setPen(borderColor_.isValid() ? QPen(borderColor_, 1.0) : QPen(Qt::NoPen));
    // On the pixels' middles, so that the border is one crisp line.
    painter.drawRoundedRect(QRectF(11.5, 2.5, 41.0, 15.0), 1.0, 1.0);
}
