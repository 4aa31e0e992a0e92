#include "editor/items/VLRoundRectItem.h"

#include <QPainter>
#include <QPainterPathStroker>
#include <algorithm>
#include <cmath>

#include "windows/VLCaptureUtilities.h"

namespace {

constexpr double cornerRadius = 4.0;
/// A side below this has no room for round corners.
constexpr double leastRounded = 8.0;
constexpr double hitTolerance = 2.0;
/// How far a round corner turns inwards from both edges.
constexpr double cornerDepth = 1.5;
/// An edge of a turned rectangle is covered by pieces of about this length.
constexpr double pieceLength = 96.0;

}  // namespace

VLRoundRectItem::VLRoundRectItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint,
                                 VLSize size)
    : VLEditItem(std::move(superView), centerPoint, size) {
    setSupportType(VLEditSupportMove | VLEditSupportResize | VLEditSupportRotate);
    VLRoundRectItem::transformDidChange();
}

std::shared_ptr<VLEditItem> VLRoundRectItem::makeSameClass() const {
    return std::make_shared<VLRoundRectItem>(superView(), center(), size());
}

void VLRoundRectItem::transformDidChange() {
    const VLRect b = bounds();
    const QRectF rect(b.x, b.y, b.width, b.height);
    path_ = QPainterPath();
    if (b.width >= leastRounded && b.height >= leastRounded)
        path_.addRoundedRect(rect, cornerRadius, cornerRadius);
    else
        path_.addRect(rect);
}

void VLRoundRectItem::drawGraph(QPainter& painter, const VLRect& /*dirtyRect*/) {
    // A line of no width is nothing; the toolkit would draw a hairline.
    if (path_.isEmpty() || !normalStrokeColor().isValid() || normalStrokeWidth() <= 0.0) return;
    painter.save();
    painter.translate(center().x, center().y);
    painter.rotate(degrees());
    painter.strokePath(path_, QPen(normalStrokeColor(), normalStrokeWidth(), Qt::SolidLine,
                                   Qt::RoundCap, Qt::RoundJoin));
    painter.restore();
}

bool VLRoundRectItem::mouseHitGraph(VLPoint point) const {
    const VLPoint local = convertPointIn(point);
    if (!VLCaptureUtilities::expandRect(bounds(), normalStrokeWidth()).containsPoint(local))
        return false;
    if (path_.isEmpty()) return false;
    QPainterPathStroker stroker;
    stroker.setWidth(normalStrokeWidth() + hitTolerance);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::BevelJoin);
    return stroker.createStroke(path_).contains(QPointF(local.x, local.y));
}

/// The four edges: the inside stays as it is when the rectangle changes.
void VLRoundRectItem::appendGraphRects(std::vector<VLRect>& rects) const {
    const VLRect b = bounds();
    const double margin = normalStrokeWidth() / 2.0 + cornerDepth;
    if (std::min(b.width, b.height) < 4.0 * margin) {
        rects.push_back(viewRectAround(b, margin));
        return;
    }
    const bool upright = std::fmod(degrees(), 90.0) == 0.0;
    const auto pieces = [upright](double length) {
        return upright ? 1 : std::clamp(static_cast<int>(length / pieceLength), 1, 12);
    };
    const int across = pieces(b.width);
    for (int i = 0; i < across; ++i) {
        const double x = b.x + b.width * i / across;
        rects.push_back(viewRectAround({x, b.y, b.width / across, 0.0}, margin));
        rects.push_back(viewRectAround({x, b.maxY(), b.width / across, 0.0}, margin));
    }
    const int along = pieces(b.height);
    for (int i = 0; i < along; ++i) {
        const double y = b.y + b.height * i / along;
        rects.push_back(viewRectAround({b.x, y, 0.0, b.height / along}, margin));
        rects.push_back(viewRectAround({b.maxX(), y, 0.0, b.height / along}, margin));
    }
}
