#include "editor/items/VLOvalItem.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "windows/VLCaptureUtilities.h"

namespace {

/// A side below this makes the ellipse a rounded bar.
constexpr double leastRing = 4.0;
constexpr double barRadius = 6.0;
/// A quarter of the ring is covered by this many rectangles, at the most.
constexpr int mostPieces = 14;
constexpr double pieceLength = 48.0;

QRectF toQt(const VLRect& r) {
    return {r.x, r.y, r.width, r.height};
}

bool ellipseContains(const VLRect& rect, VLPoint point) {
    QPainterPath ellipse;
    ellipse.setFillRule(Qt::WindingFill);
    ellipse.addEllipse(toQt(rect));
    return ellipse.contains(QPointF(point.x, point.y));
}

}  // namespace

VLOvalItem::VLOvalItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint,
                       VLSize size)
    : VLEditItem(std::move(superView), centerPoint, size) {
    setSupportType(VLEditSupportMove | VLEditSupportResize | VLEditSupportRotate);
    VLOvalItem::transformDidChange();
}

std::shared_ptr<VLEditItem> VLOvalItem::makeSameClass() const {
    return std::make_shared<VLOvalItem>(superView(), center(), size());
}

void VLOvalItem::transformDidChange() {
    path_ = QPainterPath();
    path_.addEllipse(toQt(bounds()));
    applyTransformToPath(path_);
}

VLOvalItem::Shape VLOvalItem::shape() const {
    const VLSize s = size();
    if (s.width < leastRing || s.height < leastRing) return Shape::Bar;
    const double line = normalStrokeWidth();
    return line < s.width || line < s.height ? Shape::Ring : Shape::Disc;
}

void VLOvalItem::drawGraph(QPainter& painter, const VLRect& /*dirtyRect*/) {
    // A line of no width is nothing; the toolkit would draw a hairline.
    if (!normalStrokeColor().isValid() || normalStrokeWidth() <= 0.0) return;
    const QPen pen(normalStrokeColor(), normalStrokeWidth(), Qt::SolidLine, Qt::RoundCap,
                   Qt::RoundJoin);
    switch (shape()) {
        case Shape::Bar: {
            QPainterPath bar;
            bar.addRoundedRect(toQt(bounds()), barRadius, barRadius);
            applyTransformToPath(bar);
            painter.strokePath(bar, pen);
            break;
        }
        case Shape::Ring:
            painter.strokePath(path_, pen);
            break;
        case Shape::Disc: {
            QPainterPath disc;
            disc.addEllipse(toQt(VLCaptureUtilities::expandRect(bounds(), normalStrokeWidth())
                                     .offsetBy(center().x, center().y)));
            painter.fillPath(disc, normalStrokeColor());
            break;
        }
    }
}

void VLOvalItem::drawActiveBorder(QPainter& painter) {
    if (!activeStrokeColor().isValid()) return;
    QPainterPath border;
    border.addRect(toQt(bounds()));
    applyTransformToPath(border);
    painter.strokePath(border, QPen(activeStrokeColor(), activeStrokeWidth(), Qt::SolidLine,
                                    Qt::RoundCap, Qt::RoundJoin));
}

bool VLOvalItem::mouseHitGraph(VLPoint point) const {
    const VLPoint local = convertPointIn(point);
    const double line = normalStrokeWidth();
    const VLRect outer = VLCaptureUtilities::expandRect(bounds(), line);
    if (!outer.containsPoint(local) || !ellipseContains(outer, local)) return false;
    const VLSize s = size();
    return !(line < s.width && line < s.height &&
             ellipseContains(VLCaptureUtilities::expandRect(bounds(), -line), local));
}

/// The ring: the inside stays as it is when the ellipse changes.
void VLOvalItem::appendGraphRects(std::vector<VLRect>& rects) const {
    const VLRect b = bounds();
    const double margin = normalStrokeWidth() / 2.0;
    if (shape() != Shape::Ring || std::min(b.width, b.height) < 8.0 * margin) {
        rects.push_back(viewRectAround(b, margin));
        // A disc is not turned, its bounds are.
        rects.push_back(VLCaptureUtilities::expandRect(b, normalStrokeWidth() + 2.0)
                            .offsetBy(center().x, center().y));
        return;
    }
    const double a = b.width / 2.0;
    const double c = b.height / 2.0;
    const int pieces = std::clamp(static_cast<int>(std::max(a, c) / pieceLength), 2, mostPieces);
    for (int i = 0; i < pieces; ++i) {
        const double from = M_PI_2 * i / pieces;
        const double to = M_PI_2 * (i + 1) / pieces;
        const VLRect quarter{a * std::cos(to), c * std::sin(from),
                             a * (std::cos(from) - std::cos(to)),
                             c * (std::sin(to) - std::sin(from))};
        for (const double x : {quarter.x, -quarter.maxX()})
            for (const double y : {quarter.y, -quarter.maxY()})
                rects.push_back(viewRectAround({x, y, quarter.width, quarter.height}, margin));
    }
}

void VLOvalItem::appendDecorationRects(std::vector<VLRect>& rects) const {
    VLEditItem::appendDecorationRects(rects);
    const VLRect b = bounds();
    const double margin = activeStrokeWidth() / 2.0;
    rects.push_back(viewRectAround({b.x, b.y, b.width, 0.0}, margin));
    rects.push_back(viewRectAround({b.x, b.maxY(), b.width, 0.0}, margin));
    rects.push_back(viewRectAround({b.x, b.y, 0.0, b.height}, margin));
    rects.push_back(viewRectAround({b.maxX(), b.y, 0.0, b.height}, margin));
}
