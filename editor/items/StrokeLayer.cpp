#include "editor/items/StrokeLayer.h"

#include <QPaintEngine>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace vorla {
namespace {

// Noise of adding up coordinates, in device pixels.
constexpr double kSamePixel = 1e-3;
// Straight pieces stay this close to the curve, in device pixels.
constexpr double kTolerance = 0.1;

/// The whole pixel at or below a coordinate; noise below a whole one counts as being there.
double pixelBelow(double coordinate) {
    return std::floor(coordinate + kSamePixel);
}

QRgb scaled(QRgb color, unsigned coverage) {
    // Two channels at a time, each divided by 255 to the nearest.
    const auto divided = [](unsigned product) {
        product += 0x00800080;
        return (product + ((product >> 8) & 0x00ff00ff)) >> 8 & 0x00ff00ff;
    };
    return divided((color & 0x00ff00ff) * coverage) | divided((color >> 8 & 0x00ff00ff) * coverage)
                                                          << 8;
}

/// What of a rectangle the painter's clips let through, in device pixels.
QRect visiblePixels(const QPainter& painter, const VLRect& rect) {
    const QTransform toDevice = painter.deviceTransform();
    QRectF visible(rect.x, rect.y, rect.width, rect.height);
    if (painter.hasClipping()) visible &= painter.clipBoundingRect();
    const QRect pixels = toDevice.mapRect(visible).toAlignedRect();
    const QRegion damaged = painter.paintEngine()->systemClip();
    return damaged.isEmpty() ? pixels : pixels & damaged.boundingRect();
}

}  // namespace

StrokeLayer::Ink StrokeLayer::solid(const QColor& color) {
    return [premultiplied = qPremultiply(color.rgba())](const QRect& pixels, QRgb* colors) {
        std::fill_n(colors,
                    static_cast<size_t>(pixels.width()) * static_cast<size_t>(pixels.height()),
                    premultiplied);
    };
}

bool StrokeLayer::Grid::isLike(const Grid& other) const {
    return std::abs(scaleX - other.scaleX) < 1e-9 && std::abs(scaleY - other.scaleY) < 1e-9 &&
           std::abs(phase.x - other.phase.x) < kSamePixel &&
           std::abs(phase.y - other.phase.y) < kSamePixel;
}

void StrokeLayer::update(const CurvePath& path, const Grid& grid, double width) {
    if (!mask_ || !grid.isLike(grid_) || width != width_ ||
        drawnSegments_ > path.segments().size()) {
        mask_ = std::make_unique<StrokeMask>(width * grid.scaleX / 2);
        grid_ = grid;
        width_ = width;
        drawnSegments_ = 0;
    }
    const auto inMask = [this](VLPoint point) {
        return VLPoint{point.x * grid_.scaleX + grid_.phase.x,
                       point.y * grid_.scaleY + grid_.phase.y};
    };
    for (; drawnSegments_ < path.segments().size(); ++drawnSegments_)
        path.segments()[drawnSegments_].flatten(
            kTolerance / grid_.scaleX,
            [&](VLPoint from, VLPoint to) { mask_->addLine(inMask(from), inMask(to)); });
}

void StrokeLayer::draw(QPainter& painter, const VLRect& dirtyRect, const CurvePath& path,
                       VLPoint origin, double width, const Ink& ink) {
    if (path.isEmpty() || !(width > 0)) return;
    const QTransform toDevice = painter.deviceTransform();
    const QPointF place = toDevice.map(QPointF(origin.x, origin.y));
    const QPoint whole(static_cast<int>(pixelBelow(place.x())),
                       static_cast<int>(pixelBelow(place.y())));
    update(
        path,
        {std::abs(toDevice.m11()), toDevice.m22(), {place.x() - whole.x(), place.y() - whole.y()}},
        width);

    const QRect dirty = visiblePixels(painter, dirtyRect);
    painter.save();
    painter.setWorldTransform(toDevice.inverted() * painter.worldTransform());
    constexpr int side = StrokeMask::kTileSide;
    std::array<QRgb, StrokeMask::Tile{}.size()> pixels;
    const QImage picture(reinterpret_cast<uchar*>(pixels.data()), side, side,
                         QImage::Format_ARGB32_Premultiplied);
    mask_->forEachTile(dirty.translated(-whole), [&](QPoint at, const StrokeMask::Tile& tile) {
        const QRect inDevice(at + whole, QSize(side, side));
        ink(inDevice, pixels.data());
        for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = scaled(pixels[i], tile[i]);
        painter.drawImage(inDevice.topLeft(), picture);
    });
    painter.restore();
}

}  // namespace vorla
