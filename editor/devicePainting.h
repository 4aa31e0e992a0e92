#pragma once

#include <QPainter>
#include <QRegion>
#include <cmath>
#include <vector>

#include "platform/base/geometry.h"

namespace vorla {

/// While it lives, the painter of a view (y upward, points) has the device's pixels as its units, y
/// downward, with the view's upper left corner as its zero point. The corner is taken as being on a
/// whole pixel.
class DevicePixelScope {
 public:
    DevicePixelScope(QPainter& painter, VLSize viewSize)
        : painter_(painter), scale_(painter.deviceTransform().m11()), viewSize_(viewSize) {
        const QTransform device = painter.deviceTransform();
        const QPointF corner = device.map(QPointF(0.0, viewSize.height));
        painter.save();
        painter.setWorldTransform(
            QTransform::fromTranslate(std::round(corner.x()), std::round(corner.y())) *
            device.inverted() * painter.worldTransform());
    }
    ~DevicePixelScope() { painter_.restore(); }
    DevicePixelScope(const DevicePixelScope&) = delete;
    DevicePixelScope& operator=(const DevicePixelScope&) = delete;

    /// Device pixels per point.
    [[nodiscard]] double scale() const { return scale_; }

    /// The view's size in pixels.
    [[nodiscard]] QSize sizeOfView() const {
        return {static_cast<int>(std::lround(viewSize_.width * scale_)),
                static_cast<int>(std::lround(viewSize_.height * scale_))};
    }

    /// The pixels that hold rectangles of the view.
    [[nodiscard]] QRegion regionOf(const std::vector<VLRect>& rects) const {
        const QRect all(QPoint(), sizeOfView());
        QRegion region;
        for (const VLRect& rect : rects)
            region += all & QRectF(rect.x * scale_, (viewSize_.height - rect.maxY()) * scale_,
                                   rect.width * scale_, rect.height * scale_)
                                .toAlignedRect();
        return region;
    }

 private:
    QPainter& painter_;
    double scale_;
    VLSize viewSize_;
};

}  // namespace vorla
