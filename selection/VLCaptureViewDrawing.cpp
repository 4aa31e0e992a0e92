// The painting of VLCaptureView: every pointer move ends here, so it touches nothing but the
// damage.

#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "selection/VLCaptureView.h"
#include "selection/dimming.h"

namespace {

/// Rows copied at a time where the painter has to be asked: a strip of a wide screen then stays in
/// the processor's cache on its way to the window's memory.
constexpr int stripRows = 16;

QRect devicePixels(const QRect& rect, double scale) {
    return QRectF(rect.x() * scale, rect.y() * scale, rect.width() * scale, rect.height() * scale)
        .toAlignedRect();
}

/// The picture that the painter paints into, and where the painter's device pixel (0, 0) lies in
/// it.
struct Canvas {
    QImage* image = nullptr;
    QPoint origin;
};

/// What a window is painted in is a picture, and copying rows into it is several times as fast as
/// asking the painter, which prepares for every kind of clip and blend. None when the painter
/// paints elsewhere; its transform must be to device pixels.
Canvas canvasOf(const QPainter& painter) {
    auto* image = dynamic_cast<QImage*>(painter.paintEngine()->paintDevice());
    const QTransform transform = painter.deviceTransform();
    if (!image || image->depth() != 32 || transform.type() > QTransform::TxTranslate) return {};
    return {image, QPointF(transform.dx(), transform.dy()).toPoint()};
}

/// Copies a rectangle of the frozen picture to its place on the screen, dimmed unless `color` is
/// none.
void showFrozen(QPainter& painter, const QImage& frozen, const QRect& rect, const QColor& color) {
    if (const Canvas canvas = canvasOf(painter); canvas.image) {
        const QRect fits = rect.translated(canvas.origin) & canvas.image->rect();
        const QRect part = fits.translated(-canvas.origin);
        if (color.isValid())
            vorla::copyDimmed(frozen, part, color, *canvas.image, fits.topLeft());
        else
            vorla::copyPixels(frozen, part, *canvas.image, fits.topLeft());
        return;
    }
    QImage strip(rect.width(), std::min(stripRows, rect.height()), QImage::Format_RGB32);
    if (strip.isNull()) return;
    for (int y = rect.top(); y <= rect.bottom(); y += stripRows) {
        const QRect part(rect.x(), y, rect.width(), std::min(stripRows, rect.bottom() - y + 1));
        if (color.isValid())
            vorla::copyDimmed(frozen, part, color, strip);
        else
            vorla::copyPixels(frozen, part, strip);
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
    const QRegion all(frozenImage_.rect());
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
        for (const QRect& rect : part.intersected(hole))
            showFrozen(painter, frozenImage_, rect, {});
        for (const QRect& rect : part - hole)
            showFrozen(painter, frozenImage_, rect, backgroundMaskColor_);
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
