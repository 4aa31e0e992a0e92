#include "toolbar/popover/VLRoundRectView.h"

#include <QPainter>

void VLRoundRectView::setBackgroundColor(const QColor& color) {
    backgroundColor_ = color;
    setNeedsDisplay();
}

void VLRoundRectView::setBorderColor(const QColor& color) {
    borderColor_ = color;
    setNeedsDisplay();
}

void VLRoundRectView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(backgroundColor_.isValid() ? QBrush(backgroundColor_) : QBrush(Qt::NoBrush));
    painter.setPen(borderColor_.isValid() ? QPen(borderColor_, 1.0) : QPen(Qt::NoPen));
    const VLRect inner = bounds().insetBy(0.5, 0.5);
    painter.drawRoundedRect(QRectF(inner.x, inner.y, inner.width, inner.height), cornerRadius_,
                            cornerRadius_);
}
