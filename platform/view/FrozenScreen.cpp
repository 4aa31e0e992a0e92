#include "platform/view/FrozenScreen.h"

#include <QPaintEngine>
#include <QPainter>
#include <algorithm>
#include <thread>

#include "platform/base/ParallelWork.h"
#include "platform/view/dimming.h"

namespace vorla {
namespace {

/// Rows copied at a time where the painter has to be asked: a strip of a wide screen then stays in
/// the processor's cache on its way to the window's memory.
constexpr int stripRows = 16;

/// The picture that the painter paints into, and where the painter's device pixel (0, 0) lies in
/// it.
struct Canvas {
    QImage* image = nullptr;
    QPoint origin;
};

/// None when the painter paints elsewhere, or into pixels of another make: a screen of depth 30
/// has 32 bits a pixel too.
Canvas canvasOf(const QPainter& painter) {
    auto* image = dynamic_cast<QImage*>(painter.paintEngine()->paintDevice());
    const QTransform transform = painter.deviceTransform();
    if (!image || transform.type() > QTransform::TxTranslate) return {};
    const QImage::Format format = image->format();
    if (format != QImage::Format_RGB32 && format != QImage::Format_ARGB32 &&
        format != QImage::Format_ARGB32_Premultiplied)
        return {};
    return {image, QPointF(transform.dx(), transform.dy()).toPoint()};
}

void copyRows(const PixelTarget& target, const FrozenScreen& source, const QRect& rect,
              const QColor& dim) {
    copyDimmed(source.imageDownTo(rect.bottom() + 1), rect,
               dim.isValid() ? dim : QColor(Qt::transparent), target);
}

/// Large pieces go to all processors: dimming a whole screen takes longer on one than all else that
/// a session does until it is seen.
void copyInto(QImage& image, QPoint at, const FrozenScreen& source, const QRect& rect,
              const QColor& dim) {
    constexpr int rowsAtATime = 64;
    constexpr int worthSharing = 1 << 20;
    const PixelTarget target(image, at);
    if (rect.width() * rect.height() < worthSharing) {
        copyRows(target, source, rect, dim);
        return;
    }
    const int pieces = (rect.height() + rowsAtATime - 1) / rowsAtATime;
    workInParallel(static_cast<size_t>(pieces),
                   std::max(1U, std::thread::hardware_concurrency()) - 1,
                   [&](unsigned /*worker*/, size_t piece) {
                       const int skipped = static_cast<int>(piece) * rowsAtATime;
                       const QRect rows(rect.x(), rect.y() + skipped, rect.width(),
                                        std::min(rowsAtATime, rect.height() - skipped));
                       copyRows({target.first + skipped * target.bytesPerLine, target.bytesPerLine},
                                source, rows, dim);
                   });
}

void drawInStrips(QPainter& painter, const FrozenScreen& source, const QRect& rect,
                  const QColor& dim) {
    QImage strip(rect.width(), std::min(stripRows, rect.height()), QImage::Format_RGB32);
    if (strip.isNull()) return;
    for (int y = rect.top(); y <= rect.bottom(); y += stripRows) {
        const QRect part(rect.x(), y, rect.width(), std::min(stripRows, rect.bottom() - y + 1));
        copyInto(strip, {}, source, part, dim);
        painter.drawImage(part.topLeft(), strip, QRect(QPoint(), part.size()));
    }
}

}  // namespace

VLSize FrozenScreen::size() const {
    return {image_.width() / scale(), image_.height() / scale()};
}

void FrozenScreen::draw(QPainter& painter, const QRegion& devicePixels, const QColor& dim) const {
    const Canvas canvas = canvasOf(painter);
    for (const QRect& rect : devicePixels& image_.rect()) {
        if (!canvas.image) {
            drawInStrips(painter, *this, rect, dim);
            continue;
        }
        const QRect fits = rect.translated(canvas.origin) & canvas.image->rect();
        if (!fits.isEmpty())
            copyInto(*canvas.image, fits.topLeft(), *this, fits.translated(-canvas.origin), dim);
    }
}

}  // namespace vorla
