// The painting of VLCaptureView: every pointer move ends here, so it touches nothing but the
// damage.

#include <QPainter>

#include "selection/VLCaptureView.h"

namespace {

QRect devicePixels(const QRect& rect, double scale) {
    return QRectF(rect.x() * scale, rect.y() * scale, rect.width() * scale, rect.height() * scale)
        .toAlignedRect();
}

}  // namespace

void VLCaptureView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    drawFrozen(painter);
    if (!needScreenCapture_ || !needDrawSelectedItem_) return;
    const auto& item = selectedItem();
    if (item.selectedRect().isZero()) return;
    item.draw(painter);
    if (needDrawControlPoints_) item.drawControlPoints(painter);
}

void VLCaptureView::drawFrozen(QPainter& painter) {
    const double scale = backingScale();
    const VLRect selection = pixelSelectedRectInWindow();
    const QRect hole = QRectF(selection.x * scale, (bounds().height - selection.maxY()) * scale,
                              selection.width * scale, selection.height * scale)
                           .toRect();
    QRegion dirty;
    for (const VLRect& rect : rectsBeingDrawn()) dirty += devicePixels(widgetRect(rect), scale);

    painter.save();
    painter.resetTransform();
    painter.scale(1.0 / scale, 1.0 / scale);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    frozen_.draw(painter, dirty & hole);
    frozen_.draw(painter, dirty - hole, backgroundMaskColor_);
    painter.restore();
}
