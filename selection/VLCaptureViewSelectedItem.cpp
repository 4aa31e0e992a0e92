#include "selection/VLCaptureViewSelectedItem.h"

#include <QPainter>
#include <algorithm>

#include "platform/base/VLLog.h"
#include "platform/view/VLView.h"
#include "windows/VLCaptureUtilities.h"

using vorla::ControlPointKind;
using vorla::SelectionGrid;

namespace {

/// How far beyond a border or a dot its antialiased edge may reach.
constexpr double drawingSlack = 1.0;

QRectF painterRect(const VLRect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

}  // namespace

VLCaptureViewSelectedItem::VLCaptureViewSelectedItem(const VLRect& frame, VLView* superView,
                                                     VLCaptureViewSelectedItemDelegate* delegate) {
    setSelectedRect(frame);
    superView_ = superView;
    delegate_ = delegate;
}

void VLCaptureViewSelectedItem::setSelectedRect(const VLRect& rect) {
    if (rect == selectedRect_) return;
    const VLRect before = selectedRect_;
    selectedRect_ = rect;
    updateControlPoints();
    if (delegate_) delegate_->selectionDidChange(selectedRect_);
    if (superView_)
        superView_->setNeedsDisplayInRects(
            vorla::damageOfChange(grid().aligned(before), pixelSelectedRectInWindow(), reach()));
}

SelectionGrid VLCaptureViewSelectedItem::grid() const {
    if (!superView_) return {};
    return SelectionGrid::of(superView_->backingScale(), superView_->bounds().size());
}

vorla::SelectionReach VLCaptureViewSelectedItem::reach() const {
    return {borderWidth / 2.0 + drawingSlack,
            std::max(controlPointSize.width, controlPointSize.height) + controlPointStrokeWidth +
                2.0 * drawingSlack};
}

VLRect VLCaptureViewSelectedItem::pixelSelectedRectInWindow() const {
    return grid().aligned(selectedRect_);
}

void VLCaptureViewSelectedItem::updateControlPoints() {
    pointsArray_.clear();
    for (const VLPoint& point : vorla::controlPointsOf(pixelSelectedRectInWindow()))
        pointsArray_.push_back({point, pointsArray_.size()});
}

bool VLCaptureViewSelectedItem::mouseHitGraph(VLPoint point) const {
    return VLCaptureUtilities::expandRect(selectedRect_, borderWidth).containsPoint(point);
}

std::optional<VLControlPoint> VLCaptureViewSelectedItem::fixedPointOfHit(
    VLPoint point, ControlPointKind kind) const {
    if (pointsArray_.empty()) return std::nullopt;
    const auto type = vorla::controlPointAt(pixelSelectedRectInWindow(), point, kind);
    if (!type) return std::nullopt;
    return pointsArray_[vorla::fixedPointType(*type)];
}

bool VLCaptureViewSelectedItem::mouseHitCornerResizeControlPoints(
    VLPoint point, VLControlPoint* fixedPoint) const {
    const auto fixed = fixedPointOfHit(point, ControlPointKind::Corner);
    if (fixed && fixedPoint) *fixedPoint = *fixed;
    return fixed.has_value();
}

bool VLCaptureViewSelectedItem::mouseHitVerticalResizeControlPoints(VLPoint point,
                                                                    VLPoint* fixedPoint) const {
    const auto fixed = fixedPointOfHit(point, ControlPointKind::Vertical);
    if (fixed && fixedPoint) *fixedPoint = fixed->point;
    return fixed.has_value();
}

bool VLCaptureViewSelectedItem::mouseHitHorizontalResizeControlPoints(VLPoint point,
                                                                      VLPoint* fixedPoint) const {
    const auto fixed = fixedPointOfHit(point, ControlPointKind::Horizontal);
    if (fixed && fixedPoint) *fixedPoint = fixed->point;
    return fixed.has_value();
}

std::optional<VLControlPoint> VLCaptureViewSelectedItem::fixedPointOfControlPoint(
    const VLControlPoint& controlPoint) const {
    if (controlPoint.type >= pointsArray_.size()) {
        VLLogError("%s: no control point has type %llu", __func__,
                   static_cast<unsigned long long>(controlPoint.type));
        return std::nullopt;
    }
    return pointsArray_[vorla::fixedPointType(controlPoint.type)];
}

void VLCaptureViewSelectedItem::draw(QPainter& painter) const {
    drawBorder(painter);
    drawMask(painter);
}

void VLCaptureViewSelectedItem::drawBorder(QPainter& painter) const {
    if (!borderColor.isValid() || borderWidth <= 0.0) return;
    const VLRect edge = pixelSelectedRectInWindow();
    const double half = borderWidth / 2.0;
    const VLRect outer = edge.insetBy(-half, -half);
    // Four strips and no stroke: every edge falls on whole pixels and none is blended twice.
    const double inside = std::max(0.0, outer.height - 2.0 * borderWidth);
    for (const VLRect& strip :
         {VLRect{outer.x, outer.y, outer.width, borderWidth},
          VLRect{outer.x, outer.maxY() - borderWidth, outer.width, borderWidth},
          VLRect{outer.x, outer.y + borderWidth, borderWidth, inside},
          VLRect{outer.maxX() - borderWidth, outer.y + borderWidth, borderWidth, inside}})
        painter.fillRect(painterRect(strip), borderColor);
}

void VLCaptureViewSelectedItem::drawMask(QPainter& painter) const {
    if (fillColor.isValid() && fillColor.alpha() > 0)
        painter.fillRect(painterRect(pixelSelectedRectInWindow()), fillColor);
}

void VLCaptureViewSelectedItem::drawControlPoints(QPainter& painter) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(controlPointStrokeColor.isValid() && controlPointStrokeWidth > 0.0
                       ? QPen(controlPointStrokeColor, controlPointStrokeWidth)
                       : QPen(Qt::NoPen));
    painter.setBrush(controlPointFillColor.isValid() ? QBrush(controlPointFillColor)
                                                     : QBrush(Qt::NoBrush));
    // Dots that would touch each other hide what is selected: then the middles go, then all.
    const VLRect edge = pixelSelectedRectInWindow();
    const double across = edge.width / controlPointSize.width;
    const double upright = edge.height / controlPointSize.height;
    const auto shows = [&](uint64_t type) {
        if (type == VLControlPointTopMiddle || type == VLControlPointBottomMiddle)
            return across >= 4.0 && upright >= 2.0;
        if (type == VLControlPointLeftMiddle || type == VLControlPointRightMiddle)
            return upright >= 4.0 && across >= 2.0;
        return std::max(across, upright) >= 2.0;
    };
    for (const VLControlPoint& point : pointsArray_)
        if (shows(point.type))
            painter.drawEllipse(painterRect(VLCaptureUtilities::rectWithCenter(
                point.point, controlPointSize.width, controlPointSize.height)));
    painter.restore();
}
