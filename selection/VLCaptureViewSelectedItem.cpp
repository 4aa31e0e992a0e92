#include "selection/VLCaptureViewSelectedItem.h"

#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>

#include "platform/base/VLLog.h"
#include "platform/view/VLView.h"
#include "windows/VLCaptureUtilities.h"

namespace {

/// Reach of a control point for the pointer, whatever size its dot is drawn in.
constexpr double hitSize = 20.0;
/// How far beyond a border or a dot its antialiased edge may reach.
constexpr double drawingSlack = 1.0;

/// By type: the point that stays when this one is dragged. A corner keeps the opposite corner; an
/// edge keeps a corner of the opposite edge, and the drag takes the other dimension from the
/// rectangle.
constexpr std::array<uint64_t, 8> fixedPointIndexes = {
    VLControlPointBottomRight, VLControlPointBottomLeft, VLControlPointBottomLeft,
    VLControlPointBottomRight, VLControlPointBottomLeft, VLControlPointTopRight,
    VLControlPointTopLeft,     VLControlPointTopLeft};

std::array<VLPoint, 8> controlPoints(const VLRect& r) {
    return {{{r.x, r.maxY()},
             {r.midX(), r.maxY()},
             {r.maxX(), r.maxY()},
             {r.x, r.midY()},
             {r.maxX(), r.midY()},
             {r.x, r.y},
             {r.midX(), r.y},
             {r.maxX(), r.y}}};
}

QRectF painterRect(const VLRect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

/// What of `a` is not in `b`, as up to four rectangles.
void appendDifference(std::vector<VLRect>& list, const VLRect& a, const VLRect& b) {
    const VLRect common = a.intersection(b);
    if (common.isEmpty()) {
        if (!a.isEmpty()) list.push_back(a);
        return;
    }
    const auto append = [&list](const VLRect& r) {
        if (!r.isEmpty()) list.push_back(r);
    };
    append({a.x, a.y, a.width, common.y - a.y});
    append({a.x, common.maxY(), a.width, a.maxY() - common.maxY()});
    append({a.x, common.y, common.x - a.x, common.height});
    append({common.maxX(), common.y, a.maxX() - common.maxX(), common.height});
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
    if (delegate_) delegate_->selectionDidChange();
    if (superView_) superView_->setNeedsDisplayInRects(damageOfChange(before, selectedRect_));
}

VLRect VLCaptureViewSelectedItem::aligned(const VLRect& rect) const {
    const double scale = superView_ ? superView_->backingScale() : 1.0;
    const VLRect pixels = rect.alignedInward(scale);
    // At a scale such as 1.25 whole points would cut pixels in two.
    return scale == std::floor(scale) ? pixels.alignedInward() : pixels;
}

VLRect VLCaptureViewSelectedItem::pixelSelectedRectInWindow() const {
    return aligned(selectedRect_);
}

void VLCaptureViewSelectedItem::updateControlPoints() {
    pointsArray_.clear();
    for (const VLPoint& point : controlPoints(pixelSelectedRectInWindow()))
        pointsArray_.push_back({point, pointsArray_.size()});
}

bool VLCaptureViewSelectedItem::mouseHitGraph(VLPoint point) const {
    return VLCaptureUtilities::expandRect(selectedRect_, borderWidth).containsPoint(point);
}

std::optional<VLControlPoint> VLCaptureViewSelectedItem::fixedPointOfHit(VLPoint point,
                                                                         Kind kind) const {
    const auto kindOf = [](uint64_t type) {
        if (type == VLControlPointTopMiddle || type == VLControlPointBottomMiddle)
            return Kind::Vertical;
        if (type == VLControlPointLeftMiddle || type == VLControlPointRightMiddle)
            return Kind::Horizontal;
        return Kind::Corner;
    };
    for (const VLControlPoint& candidate : pointsArray_) {
        if (kindOf(candidate.type) != kind) continue;
        if (VLCaptureUtilities::rectWithCenter(candidate.point, hitSize, hitSize)
                .containsPoint(point))
            return fixedPointOfControlPoint(candidate);
    }
    return std::nullopt;
}

bool VLCaptureViewSelectedItem::mouseHitCornerResizeControlPoints(
    VLPoint point, VLControlPoint* fixedPoint) const {
    const auto fixed = fixedPointOfHit(point, Kind::Corner);
    if (fixed && fixedPoint) *fixedPoint = *fixed;
    return fixed.has_value();
}

bool VLCaptureViewSelectedItem::mouseHitVerticalResizeControlPoints(VLPoint point,
                                                                    VLPoint* fixedPoint) const {
    const auto fixed = fixedPointOfHit(point, Kind::Vertical);
    if (fixed && fixedPoint) *fixedPoint = fixed->point;
    return fixed.has_value();
}

bool VLCaptureViewSelectedItem::mouseHitHorizontalResizeControlPoints(VLPoint point,
                                                                      VLPoint* fixedPoint) const {
    const auto fixed = fixedPointOfHit(point, Kind::Horizontal);
    if (fixed && fixedPoint) *fixedPoint = fixed->point;
    return fixed.has_value();
}

std::optional<VLControlPoint> VLCaptureViewSelectedItem::fixedPointOfControlPoint(
    const VLControlPoint& controlPoint) const {
    if (controlPoint.type >= fixedPointIndexes.size() || pointsArray_.empty()) {
        VLLogError("%s: no control point has type %llu", __func__,
                   static_cast<unsigned long long>(controlPoint.type));
        return std::nullopt;
    }
    return pointsArray_[fixedPointIndexes[controlPoint.type]];
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
    for (const VLControlPoint& point : pointsArray_)
        painter.drawEllipse(painterRect(VLCaptureUtilities::rectWithCenter(
            point.point, controlPointSize.width, controlPointSize.height)));
    painter.restore();
}

std::vector<VLRect> VLCaptureViewSelectedItem::damageOfChange(const VLRect& from,
                                                              const VLRect& to) const {
    const VLRect a = aligned(from);
    const VLRect b = aligned(to);
    std::vector<VLRect> damage;
    appendDifference(damage, a, b);
    appendDifference(damage, b, a);
    const double border = borderWidth / 2.0 + drawingSlack;
    const double dot = std::max(controlPointSize.width, controlPointSize.height) +
                       controlPointStrokeWidth + 2.0 * drawingSlack;
    for (const VLRect& r : {a, b}) {
        if (r.isZero()) continue;
        const VLRect outer = r.insetBy(-border, -border);
        damage.push_back({outer.x, r.y - border, outer.width, 2.0 * border});
        damage.push_back({outer.x, r.maxY() - border, outer.width, 2.0 * border});
        damage.push_back({r.x - border, outer.y, 2.0 * border, outer.height});
        damage.push_back({r.maxX() - border, outer.y, 2.0 * border, outer.height});
        for (const VLPoint& point : controlPoints(r))
            damage.push_back(VLCaptureUtilities::rectWithCenter(point, dot, dot));
    }
    return damage;
}
