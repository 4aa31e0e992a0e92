#include "editor/items/VLArrowItem.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "editor/items/tangentArc.h"
#include "windows/VLCaptureUtilities.h"

namespace {

constexpr double pi = 3.141592653589793;
/// A slanting arrow is covered by pieces of about this length.
constexpr double pieceLength = 64.0;
constexpr double antialiasing = 1.0;

double scaleOfLength(double length) {
    struct Limit {
        double below;
        double scale;
    };
    for (const Limit& limit :
         {Limit{20, 0.1}, Limit{40, 0.2}, Limit{60, 0.4}, Limit{80, 0.6}, Limit{100, 0.8}})
        if (length < limit.below) return limit.scale;
    return 1.0;
}

VLSize scaled(VLSize size, double scale) {
    return {size.width * scale, size.height * scale};
}

}  // namespace

VLArrowItem::Proportions VLArrowItem::proportions(double length, double lineWidth) {
    Proportions whole{{26, 16}, {23, 7}, {3, 3}, {0, 2}, 2};
    if (lineWidth >= 7.0)
        whole = {{60, 40}, {50, 16}, {6, 6}, {0, 6}, 7};
    else if (lineWidth >= 4.0)
        whole = {{42, 28}, {36, 11}, {4, 4}, {0, 4}, 5};
    const double scale = scaleOfLength(length);
    return {scaled(whole.head, scale), scaled(whole.shaft, scale), scaled(whole.tail, scale),
            scaled(whole.corner, scale), whole.radius * scale};
}

VLArrowItem::VLArrowItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint,
                         VLSize size)
    : VLEditItem(std::move(superView), centerPoint, size) {
    setSupportType(VLEditSupportMove | VLEditSupportResize);
    VLArrowItem::transformDidChange();
}

std::shared_ptr<VLEditItem> VLArrowItem::makeSameClass() const {
    return std::make_shared<VLArrowItem>(superView(), center(), size());
}

void VLArrowItem::setNormalStrokeWidth(double width) {
    VLEditItem::setNormalStrokeWidth(width);
    transformDidChange();
    setNeedsDisplay();
}

double VLArrowItem::rotateDegrees() const {
    const float angle = std::atan2(static_cast<float>(endPoint_.y - beginPoint_.y),
                                   static_cast<float>(endPoint_.x - beginPoint_.x));
    return static_cast<double>(angle) / pi * 180.0;
}

void VLArrowItem::transformDidChange() {
    // While its tail is dragged, the end that follows the pointer is the tail.
    const bool tailMoves = editType() == VLEditTypeBeginResize;
    beginPoint_ = convertPointIn(tailMoves ? resizeChangePoint() : resizeFixedPoint());
    endPoint_ = convertPointIn(tailMoves ? resizeFixedPoint() : resizeChangePoint());
    const double length = std::hypot(endPoint_.x - beginPoint_.x, endPoint_.y - beginPoint_.y);
    const double l = length / 2.0;
    resizeDotBeginPoint_ = {-l, 0.0};
    resizeDotEndPoint_ = {l, 0.0};

    const Proportions p = proportions(length, normalStrokeWidth());
    const VLPoint beginUp{-l + p.corner.width, p.corner.height};
    const VLPoint beginMiddle{-l + p.corner.width, 0.0};
    const VLPoint beginDown{-l + p.corner.width, -p.corner.height};
    const VLPoint arcUp{-l + p.tail.width, p.tail.height};
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.moveTo(arcUp.x, -arcUp.y);
    vorla::addArcToPoint(path, beginDown, beginMiddle, p.radius);
    vorla::addArcToPoint(path, beginUp, arcUp, p.radius);
    path.lineTo(l - p.shaft.width, p.shaft.height);
    path.lineTo(l - p.head.width, p.head.height);
    path.lineTo(l, 0.0);
    path.lineTo(l - p.head.width, -p.head.height);
    path.lineTo(l - p.shaft.width, -p.shaft.height);
    path.lineTo(arcUp.x, -arcUp.y);
    path.closeSubpath();
    arrowPath_ = path;
}

void VLArrowItem::drawGraph(QPainter& painter, const VLRect& /*dirtyRect*/) {
    if (!normalStrokeColor().isValid()) return;
    painter.save();
    painter.translate(center().x, center().y);
    painter.rotate(rotateDegrees());
    painter.fillPath(arrowPath_, normalStrokeColor());
    painter.restore();
}

void VLArrowItem::drawControlPoints(QPainter& painter) {
    painter.save();
    painter.translate(center().x, center().y);
    painter.rotate(rotateDegrees());
    drawDot(painter, resizeDotBeginPoint_);
    drawDot(painter, resizeDotEndPoint_);
    painter.restore();
}

bool VLArrowItem::mouseHitGraph(VLPoint point) const {
    const VLPoint local = convertPointIn(point);
    return arrowPath_.contains(
        QTransform().rotate(-rotateDegrees()).map(QPointF(local.x, local.y)));
}

bool VLArrowItem::hitEnd(VLPoint point, VLPoint end, VLPoint other, VLPoint* fixedPoint) const {
    if (!VLCaptureUtilities::rectWithCenter(end, resizeReactiveRadius, resizeReactiveRadius)
             .containsPoint(convertPointIn(point)))
        return false;
    if (fixedPoint) *fixedPoint = convertPointOut(other);
    return true;
}

bool VLArrowItem::mouseHitBeginResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const {
    return hitEnd(point, beginPoint_, endPoint_, fixedPoint);
}

bool VLArrowItem::mouseHitEndResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const {
    return hitEnd(point, endPoint_, beginPoint_, fixedPoint);
}

void VLArrowItem::appendGraphRects(std::vector<VLRect>& rects) const {
    const QRectF all = arrowPath_.controlPointRect();
    const int pieces = std::clamp(static_cast<int>(all.width() / pieceLength), 1, 16);
    const QTransform turn = QTransform().rotate(rotateDegrees());
    for (int i = 0; i < pieces; ++i) {
        const QRectF piece = turn.mapRect(QRectF(all.x() + all.width() * i / pieces, all.y(),
                                                 all.width() / pieces, all.height()));
        rects.push_back(
            viewRectAround({piece.x(), piece.y(), piece.width(), piece.height()}, antialiasing));
    }
}

void VLArrowItem::appendDecorationRects(std::vector<VLRect>& rects) const {
    const QTransform turn = QTransform().rotate(rotateDegrees());
    for (const VLPoint dot : {resizeDotBeginPoint_, resizeDotEndPoint_}) {
        const QPointF local = turn.map(QPointF(dot.x, dot.y));
        rects.push_back(viewRectOfDot({local.x(), local.y()}));
    }
}
