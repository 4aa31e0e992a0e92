// The painting of VLCaptureView: every pointer move ends here, so it touches nothing but the
// damage.

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "selection/VLCaptureView.h"
#include "selection/dimming.h"

namespace {

/// Rows dimmed at a time: a strip of a wide screen then stays in the processor's cache on its way
/// to the window's memory.
constexpr int stripRows = 16;

QRect devicePixels(const QRect& rect, double scale) {
    return QRectF(rect.x() * scale, rect.y() * scale, rect.width() * scale, rect.height() * scale)
        .toAlignedRect();
}

void drawDimmed(QPainter& painter, const QImage& image, const QRect& rect, const QColor& color) {
    QImage strip(rect.width(), std::min(stripRows, rect.height()), QImage::Format_RGB32);
    if (strip.isNull()) return;
    for (int y = rect.top(); y <= rect.bottom(); y += stripRows) {
        const QRect part(rect.x(), y, rect.width(), std::min(stripRows, rect.bottom() - y + 1));
        vorla::copyDimmed(image, part, color, strip);
        painter.drawImage(part.topLeft(), strip, QRect(QPoint(), part.size()));
    }
}

}  // namespace

void VLCaptureView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    if (frozenImage_.isNull())
        drawMaskOnly(painter);
    else
        drawFrozen(painter);
    if (!needScreenCapture_ || !needDrawSelectedItem_) return;
    const auto& item = selectedItem();
    if (item.selectedRect().isZero()) return;
    item.draw(painter);
    if (needDrawControlPoints_) item.drawControlPoints(painter);
}

void VLCaptureView::drawFrozen(QPainter& painter) {
    const double scale = backingScale();
    QImage pixels = frozenImage_;
    pixels.setDevicePixelRatio(1.0);
    const QRegion all(pixels.rect());
    const VLRect selection = pixelSelectedRectInWindow();
    const QRect hole = QRectF(selection.x * scale, (bounds().height - selection.maxY()) * scale,
                              selection.width * scale, selection.height * scale)
                           .toRect();

    painter.save();
    painter.resetTransform();
    painter.scale(1.0 / scale, 1.0 / scale);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (const VLRect& dirty : rectsBeingDrawn()) {
        const QRegion part = all & devicePixels(widgetRect(dirty), scale);
        for (const QRect& rect : part& hole) painter.drawImage(rect.topLeft(), pixels, rect);
        for (const QRect& rect : part - hole) {
            if (backgroundMaskColor_.isValid())
                drawDimmed(painter, pixels, rect, backgroundMaskColor_);
            else
                painter.drawImage(rect.topLeft(), pixels, rect);
        }
    }
    painter.restore();
}

void VLCaptureView::drawMaskOnly(QPainter& painter) {
    if (!backgroundMaskColor_.isValid()) return;
    QPainterPath mask;
    mask.setFillRule(Qt::OddEvenFill);
    const auto add = [&mask](const VLRect& r) { mask.addRect(r.x, r.y, r.width, r.height); };
    add(bounds());
    if (!selectedRect().isZero()) add(pixelSelectedRectInWindow());
    painter.fillPath(mask, backgroundMaskColor_);
}
