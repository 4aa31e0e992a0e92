#include "editor/items/VLCurveItem.h"

#include <algorithm>
#include <utility>

VLCurveItem::VLCurveItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint,
                         VLSize size)
    : VLEditItem(std::move(superView), centerPoint, size) {
    setSupportType(VLEditSupportMove | VLEditSupportAddPoint);
}

std::shared_ptr<VLEditItem> VLCurveItem::makeSameClass() const {
    return std::make_shared<VLCurveItem>(superView(), center(), size());
}

std::shared_ptr<VLEditItem> VLCurveItem::copyWithZone() const {
    auto copy = VLEditItem::copyWithZone();
    auto& curve = static_cast<VLCurveItem&>(*copy);
    curve.mousePointArray_ = mousePointArray_;
    curve.previousPoint_ = previousPoint_;
    curve.path_ = path_;
    return copy;
}

VLPoint VLCurveItem::midPointOfP1(VLPoint p1, VLPoint p2) {
    return {(p1.x + p2.x) / 2, (p1.y + p2.y) / 2};
}

void VLCurveItem::addPoint(VLPoint viewPoint) {
    if (path_.isEmpty()) {
        path_.moveTo(viewPoint);
        previousPoint_ = viewPoint;
        mousePointArray_.clear();
    }
    const VLPoint middle = midPointOfP1(previousPoint_, viewPoint);
    path_.curveTo(previousPoint_, middle, middle);
    previousPoint_ = viewPoint;
    mousePointArray_.push_back(viewPoint);
    setNeedsDisplayOfNewPart(viewRectAroundStroke(path_.segments().back().bounds()));
}

void VLCurveItem::setEditType(uint64_t editType) {
    VLEditItem::setEditType(editType);
    if (editType == VLEditTypeNormal) border_.clear();
}

bool VLCurveItem::mouseHitGraph(VLPoint point) const {
    return path_.isNear(convertPointIn(point), normalStrokeWidth() / 2);
}

void VLCurveItem::drawGraph(QPainter& painter, const VLRect& dirtyRect) {
    if (!normalStrokeColor().isValid()) return;
    drawStroke(painter, dirtyRect, vorla::StrokeLayer::solid(normalStrokeColor()));
}

void VLCurveItem::drawStroke(QPainter& painter, const VLRect& dirtyRect,
                             const vorla::StrokeLayer::Ink& ink) {
    stroke_.draw(painter, dirtyRect, path_, center(), actualDrawWidth(), ink);
}

void VLCurveItem::drawActiveBorder(QPainter& painter) {
    if (!activeStrokeColor().isValid()) return;
    border_.draw(painter, viewRectAroundStroke(bounds()), path_, center(), activeStrokeWidth(),
                 vorla::StrokeLayer::solid(activeStrokeColor()));
}

VLRect VLCurveItem::viewRectAroundStroke(const VLRect& local) const {
    return viewRectAround(local, std::max(actualDrawWidth(), activeStrokeWidth()) / 2);
}

void VLCurveItem::appendGraphRects(std::vector<VLRect>& rects) const {
    if (!path_.isEmpty()) rects.push_back(viewRectAroundStroke(bounds()));
}

/// The border lies within what the stroke covers.
void VLCurveItem::appendDecorationRects(std::vector<VLRect>& /*rects*/) const {}
