#include "toolbar/popover/VLPopoverColorButtonForTern.h"

#include <QPainter>

namespace {

/// From here on a grey is hard to tell from white.
constexpr int lightest = 200;

}  // namespace

void VLPopoverColorButtonForTern::setColor(const QColor& color) {
    color_ = color;
    setNeedsDisplay();
}

void VLPopoverColorButtonForTern::mouseUp(const VLMouseEvent& /*event*/) {
    setIsSelected(true);
    performAction();
}

void VLPopoverColorButtonForTern::drawRect(QPainter& painter, const VLRect& dirtyRect) {
    const QRectF dirty(dirtyRect.x, dirtyRect.y, dirtyRect.width, dirtyRect.height);
    const QRectF whole(0.0, 0.0, bounds().width, bounds().height);
    painter.fillRect(dirty.intersected(whole), color_);
    if (!isSelected()) return;
    painter.setPen(QPen(borderColor_, 2.0, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(whole.adjusted(1.0, 1.0, -1.0, -1.0));
    // A light border around a light colour would say nothing.
    if (qGray(color_.rgb()) < lightest) return;
    painter.setPen(QPen(QColor(0, 0, 0, 160), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.drawRect(whole.adjusted(2.5, 2.5, -2.5, -2.5));
}
