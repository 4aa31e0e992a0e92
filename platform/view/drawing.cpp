#include "platform/view/drawing.h"

#include <QFontMetricsF>
#include <QPainter>

namespace vorla {
namespace {

/// Turns the painter's y downward while it lives, with `axis` as the line that stays in place.
class UprightScope {
 public:
    UprightScope(QPainter& painter, double axis) : painter_(painter) {
        painter_.save();
        painter_.translate(0.0, axis);
        painter_.scale(1.0, -1.0);
    }
    ~UprightScope() { painter_.restore(); }
    UprightScope(const UprightScope&) = delete;
    UprightScope& operator=(const UprightScope&) = delete;

 private:
    QPainter& painter_;
};

}  // namespace

void drawImage(QPainter& painter, const QImage& image, const VLRect& target, const VLRect& source,
               Interpolation interpolation) {
    if (image.isNull() || target.isEmpty() || source.isEmpty()) return;
    const double scale = image.devicePixelRatio();
    const double height = image.height() / scale;
    const VLRect whole{0.0, 0.0, image.width() / scale, height};
    const VLRect part = source.intersection(whole);
    if (part.isEmpty()) return;
    const double zoomX = target.width / source.width;
    const double zoomY = target.height / source.height;
    const VLRect place{target.x + (part.x - source.x) * zoomX,
                       target.y + (part.y - source.y) * zoomY, part.width * zoomX,
                       part.height * zoomY};
    const UprightScope upright(painter, place.maxY());
    painter.setRenderHint(QPainter::SmoothPixmapTransform, interpolation == Interpolation::Smooth);
    painter.drawImage(QRectF(place.x, 0.0, place.width, place.height), image,
                      QRectF(part.x * scale, (height - part.maxY()) * scale, part.width * scale,
                             part.height * scale));
}

void drawImage(QPainter& painter, const QImage& image, const VLRect& target) {
    const double scale = image.devicePixelRatio();
    const VLRect whole{0.0, 0.0, image.width() / scale, image.height() / scale};
    // Pixel for pixel there is nothing to smooth, and the toolkit's way of trying costs several
    // times as much as the copy.
    const bool pixelForPixel = target.size() == whole.size();
    drawImage(painter, image, target, whole,
              pixelForPixel ? Interpolation::None : Interpolation::Smooth);
}

VLSize textSize(const QString& text, const QFont& font) {
    const QFontMetricsF metrics(font);
    return {metrics.horizontalAdvance(text), metrics.height()};
}

void drawText(QPainter& painter, const QString& text, const QFont& font, const QColor& color,
              VLPoint origin) {
    if (!color.isValid()) return;
    const QFontMetricsF metrics(font);
    const UprightScope upright(painter, origin.y + metrics.descent());
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(QPointF(origin.x, 0.0), text);
}

}  // namespace vorla
