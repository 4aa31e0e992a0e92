#include "editor/items/VLTagItem.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <utility>

#include "editor/items/tangentArc.h"
#include "windows/VLCaptureUtilities.h"

namespace {

constexpr double dotSize = 8.0;
constexpr double pointerWidth = 7.0;
constexpr double pointerHeight = 10.0;
/// From the dot's middle to the pointer's tip, and to the label.
constexpr double toPointer = 8.0;
constexpr double toLabel = toPointer + pointerWidth;
constexpr double padding = 5.0;
constexpr double outerMargin = 10.0;
constexpr double cornerRadius = 3.0;
/// From the dot's middle to the text.
constexpr double toText = toLabel + padding;
constexpr double dotFromTop = 17.0;
constexpr double reactiveBehindDot = 14.0;
constexpr double reactiveAroundDot = 10.0;

QRectF toQt(const VLRect& r) {
    return {r.x, r.y, r.width, r.height};
}

}  // namespace

VLTagItem::VLTagItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint, VLSize size)
    : VLTextViewBasedItem(std::move(superView), centerPoint, size) {
    setSupportType(VLEditSupportMove | VLEditSupportEdit | VLEditSupportReverse);
    setupTextView();
}

std::shared_ptr<VLEditItem> VLTagItem::makeSameClass() const {
    auto copy = std::make_shared<VLTagItem>(superView(), center(), size());
    copy->ovalControlOnLeft_ = ovalControlOnLeft_;
    return copy;
}

void VLTagItem::reverse() {
    ovalControlOnLeft_ = !ovalControlOnLeft_;
    updateTextView();
    updateFrame();
    setNeedsDisplay();
}

// Frames ---------------------------------------------------------------------------------------

VLPoint VLTagItem::centerConvertedIn() const {
    const VLRect b = bounds();
    return {b.x + b.width / 2, b.y + b.height / 2};
}

VLRect VLTagItem::ovalControlPointFrame() const {
    return {centerConvertedIn().x - dotSize / 2, bounds().maxY() - dotFromTop - dotSize, dotSize,
            dotSize};
}

VLRect VLTagItem::arrowFrame() const {
    const double x = centerConvertedIn().x;
    return {ovalControlOnLeft_ ? x + toPointer : x - toPointer - pointerWidth,
            ovalControlPointFrame().midY() - pointerHeight / 2, pointerWidth, pointerHeight};
}

VLRect VLTagItem::roundRectFrame() const {
    const VLRect b = bounds();
    const double x = centerConvertedIn().x;
    const double width = b.width / 2 - toLabel - outerMargin;
    return {ovalControlOnLeft_ ? x + toLabel : x - toLabel - width, b.y + outerMargin, width,
            b.height - 2 * outerMargin};
}

VLRect VLTagItem::moveReactiveRect() const {
    const VLRect b = bounds();
    const double x = ovalControlOnLeft_ ? b.x + b.width / 2 - reactiveBehindDot : b.x;
    return {x, b.y, b.width / 2 + reactiveBehindDot, b.height};
}

VLRect VLTagItem::textviewRect() const {
    const VLRect label = roundRectFrame();
    return {std::ceil(label.x + padding + center().x), std::ceil(label.y + padding + center().y),
            std::ceil(label.width - 2 * padding), std::ceil(label.height - 2 * padding)};
}

VLSize VLTagItem::minSizeOfTextItemWithFont(const QFont& font) const {
    const VLSize text = minSizeOfTextViewWithFont(font);
    return {(text.width + toText + padding + outerMargin) * 2,
            text.height + 2 * padding + 2 * outerMargin};
}

void VLTagItem::updateTextView() {
    setTextFrame(textviewRect());
    VLTextViewBasedItem::updateTextView();
}

void VLTagItem::updateFrame() {
    const VLRect& text = textFrame();
    setSize({(text.width + toText + padding + outerMargin) * 2,
             text.height + 2 * padding + 2 * outerMargin});
    setCenter({ovalControlOnLeft_ ? text.x - toText : text.maxX() + toText, text.midY()});
    updateMoveTransform();
    transformDidChange();
}

// Hits -----------------------------------------------------------------------------------------

bool VLTagItem::mouseHitReverseControlPoints(VLPoint point) const {
    return VLCaptureUtilities::expandRect(ovalControlPointFrame(), reactiveAroundDot)
        .containsPoint(convertPointIn(point));
}

bool VLTagItem::mouseHitGraph(VLPoint point) const {
    if (mouseHitReverseControlPoints(point)) return true;
    const double border = activeStrokeWidth() / 2;
    return moveReactiveRect().insetBy(-border, -border).containsPoint(convertPointIn(point));
}

// Drawing --------------------------------------------------------------------------------------

void VLTagItem::drawGraph(QPainter& painter, const VLRect& dirtyRect) {
    painter.save();
    painter.translate(center().x, center().y);
    painter.rotate(degrees());
    painter.setPen(Qt::NoPen);
    drawOvalControlPoint(painter);
    drawArrowRoundRect(painter);
    painter.restore();
    VLTextViewBasedItem::drawGraph(painter, dirtyRect);
}

void VLTagItem::drawOvalControlPoint(QPainter& painter) const {
    if (!normalStrokeColor().isValid()) return;
    painter.setBrush(normalStrokeColor());
    painter.drawEllipse(toQt(ovalControlPointFrame()));
}

/// One outline, so that what lies under label and pointer is darkened once, and without a seam.
void VLTagItem::drawArrowRoundRect(QPainter& painter) const {
    const VLRect a = arrowFrame();
    const VLRect r = roundRectFrame();
    const double near = ovalControlOnLeft_ ? r.x : r.maxX();
    const double far = ovalControlOnLeft_ ? r.maxX() : r.x;
    const double tip = ovalControlOnLeft_ ? a.x : a.maxX();
    QPainterPath outline(QPointF(near, a.maxY()));
    outline.lineTo(tip, a.midY());
    outline.lineTo(near, a.y);
    vorla::addArcToPoint(outline, {near, r.y}, {r.midX(), r.y}, cornerRadius);
    vorla::addArcToPoint(outline, {far, r.y}, {far, r.midY()}, cornerRadius);
    vorla::addArcToPoint(outline, {far, r.maxY()}, {r.midX(), r.maxY()}, cornerRadius);
    vorla::addArcToPoint(outline, {near, r.maxY()}, {near, a.maxY()}, cornerRadius);
    outline.closeSubpath();
    painter.setBrush(QColor(0, 0, 0, qRound(0.7 * 255)));
    painter.drawPath(outline);
}

void VLTagItem::drawActiveBorder(QPainter& painter) {
    strokeActiveBorder(painter, moveReactiveRect());
}

void VLTagItem::appendGraphRects(std::vector<VLRect>& rects) const {
    const VLRect visible = roundRectFrame().united(arrowFrame()).united(ovalControlPointFrame());
    rects.push_back(viewRectAround(visible, 1.0));
}

void VLTagItem::appendDecorationRects(std::vector<VLRect>& rects) const {
    rects.push_back(viewRectAround(moveReactiveRect(), activeStrokeWidth() / 2));
}
