#include "editor/items/VLEditItem.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/base/VLLog.h"
#include "theme/HexColor.h"
#include "windows/VLCaptureUtilities.h"

namespace {

constexpr double pi = 3.141592653589793;
constexpr double dotSize = 7.0;
constexpr double dotRing = 2.0;
/// What antialiasing may touch beyond an outline.
constexpr double antialiasing = 1.0;

QPointF toQt(VLPoint p) {
    return {p.x, p.y};
}
VLPoint fromQt(QPointF p) {
    return {p.x(), p.y()};
}

/// The direction of `point` seen from `center`, in degrees. In single precision, which the steps of
/// a turn then add up.
double direction(VLPoint center, VLPoint point) {
    const float angle =
        std::atan2(static_cast<float>(point.y - center.y), static_cast<float>(point.x - center.x));
    return static_cast<double>(angle) / pi * 180.0;
}

constexpr std::initializer_list<uint64_t> corners{
    VLEditControlPointTopLeft, VLEditControlPointTopRight, VLEditControlPointBottomLeft,
    VLEditControlPointBottomRight};

}  // namespace

VLEditItem::VLEditItem(std::weak_ptr<VLEditItemSuperView> superView, VLPoint centerPoint,
                       VLSize size)
    : controlPointFillColor(hx_colorWithHexString("#ff3440")),
      controlPointStrokeColor(hx_colorWithHexString("#ffffff")),
      superView_(std::move(superView)),
      center_(centerPoint),
      size_(size),
      resizeFixedPoint_(centerPoint),
      resizeChangePoint_(centerPoint) {
    VLEditItem::resize();
}

VLEditItem::~VLEditItem() {
    VLLogTrace("%s - dealloc", "VLEditItem");
}

std::shared_ptr<VLEditItem> VLEditItem::makeSameClass() const {
    return std::make_shared<VLEditItem>(superView_, center_, size());
}

std::shared_ptr<VLEditItem> VLEditItem::copyWithZone() const {
    auto copy = makeSameClass();
    copy->setNormalStrokeColor(normalStrokeColor_);
    copy->setNormalStrokeWidth(normalStrokeWidth_);
    copy->setActiveStrokeColor(activeStrokeColor_);
    copy->setActiveStrokeWidth(activeStrokeWidth_);
    copy->controlPointStrokeColor = controlPointStrokeColor;
    copy->controlPointFillColor = controlPointFillColor;
    copy->resizeReactiveRadius = resizeReactiveRadius;
    copy->rotateReactiveRadius = rotateReactiveRadius;
    copy->setCenter(center_);
    copy->setSize(size_);
    copy->setDegrees(degrees_);
    copy->supportType_ = supportType_;
    copy->setResizeFixedPoint(resizeFixedPoint_);
    copy->setResizeChangePoint(resizeChangePoint_);
    copy->moveTransform_ = moveTransform_;
    copy->rotateTransform_ = rotateTransform_;
    // The forward transform on purpose: it holds until the copy is moved.
    copy->reverseMoveTransform_ = moveTransform_;
    copy->reverseRotateTransform_ = reverseRotateTransform_;
    return copy;
}

void VLEditItem::setNormalStrokeColor(const QColor& color) {
    if (color == normalStrokeColor_) return;
    normalStrokeColor_ = color;
    setNeedsDisplay();
}

void VLEditItem::setNormalStrokeWidth(double width) {
    if (width == normalStrokeWidth_) return;
    normalStrokeWidth_ = width;
    setNeedsDisplay();
}

bool VLEditItem::isValid() const {
    return size().width > 0.0 || size().height > 0.0;
}

VLRect VLEditItem::bounds() const {
    const VLSize s = size();
    return {-s.width / 2.0, -s.height / 2.0, s.width, s.height};
}

// Coordinates ----------------------------------------------------------------------------------

VLPoint VLEditItem::convertPointIn(VLPoint viewPoint) const {
    return fromQt(reverseRotateTransform_.map(reverseMoveTransform_.map(toQt(viewPoint))));
}

VLPoint VLEditItem::convertPointOut(VLPoint localPoint) const {
    return fromQt(moveTransform_.map(rotateTransform_.map(toQt(localPoint))));
}

void VLEditItem::applyTransformToPath(QPainterPath& path) const {
    path = moveTransform_.map(rotateTransform_.map(path));
}

void VLEditItem::updateMoveTransform() {
    moveTransform_ = QTransform::fromTranslate(center_.x, center_.y);
    reverseMoveTransform_ = QTransform::fromTranslate(-center_.x, -center_.y);
}

void VLEditItem::updateRotateTransfrom() {
    rotateTransform_ = QTransform().rotate(degrees_);
    reverseRotateTransform_ = QTransform().rotate(-degrees_);
}

// Changes --------------------------------------------------------------------------------------

void VLEditItem::move(VLPoint vector) {
    center_ = center_ + vector;
    resizeFixedPoint_ = resizeFixedPoint_ + vector;
    resizeChangePoint_ = resizeChangePoint_ + vector;
    updateMoveTransform();
    transformDidChange();
    setNeedsDisplay();
}

void VLEditItem::setDegrees(double degrees) {
    degrees_ = degrees;
    updateRotateTransfrom();
    transformDidChange();
    const VLRect b = bounds();
    resizeFixedPoint_ = convertPointOut({b.x, b.y});
    resizeChangePoint_ = convertPointOut({b.maxX(), b.maxY()});
}

void VLEditItem::rotateToDegrees(double degrees) {
    setDegrees(degrees);
    setNeedsDisplay();
}

void VLEditItem::setRotateEndPoint(VLPoint point) {
    rotateEndPoint_ = point;
    rotate();
    setNeedsDisplay();
}

void VLEditItem::rotate() {
    setDegrees(degrees_ +
               (direction(center_, rotateEndPoint_) - direction(center_, rotateStartPoint_)));
}

void VLEditItem::setResizeChangePoint(VLPoint point) {
    resizeChangePoint_ = point;
    switch (editType_) {
        case VLEditTypeVerticalResize:
            handelResizeHeight();
            break;
        case VLEditTypeHorizontalResize:
            handelResizeWidth();
            break;
        case VLEditTypeEqualRatioResize:
            handelEqualRatioResize();
            break;
        default:
            resize();
    }
    setNeedsDisplay();
}

void VLEditItem::resize() {
    center_ = {(resizeFixedPoint_.x + resizeChangePoint_.x) / 2.0,
               (resizeFixedPoint_.y + resizeChangePoint_.y) / 2.0};
    const VLPoint fixed = fromQt(reverseRotateTransform_.map(toQt(resizeFixedPoint_)));
    const VLPoint change = fromQt(reverseRotateTransform_.map(toQt(resizeChangePoint_)));
    setSize(VLCaptureUtilities::minRectWithFirstPoint(fixed, change).size());
    updateMoveTransform();
    transformDidChange();
}

/// The change point goes to the mirror of the fixed corner, so that only the height follows it.
void VLEditItem::handelResizeHeight() {
    const VLPoint fixed = convertPointIn(resizeFixedPoint_);
    const VLPoint change = convertPointIn(resizeChangePoint_);
    resizeChangePoint_ = convertPointOut({-fixed.x, change.y});
    resize();
}

void VLEditItem::handelResizeWidth() {
    const VLPoint fixed = convertPointIn(resizeFixedPoint_);
    const VLPoint change = convertPointIn(resizeChangePoint_);
    resizeChangePoint_ = convertPointOut({change.x, -fixed.y});
    resize();
}

// Handles --------------------------------------------------------------------------------------

void VLEditItem::updateControlPoints() {
    const VLRect b = bounds();
    pointsArray_ = {{{b.x, b.maxY()}, VLEditControlPointTopLeft},
                    {{b.midX(), b.maxY()}, VLEditControlPointTop},
                    {{b.maxX(), b.maxY()}, VLEditControlPointTopRight},
                    {{b.x, b.midY()}, VLEditControlPointLeft},
                    {{b.maxX(), b.midY()}, VLEditControlPointRight},
                    {{b.x, b.y}, VLEditControlPointBottomLeft},
                    {{b.midX(), b.y}, VLEditControlPointBottom},
                    {{b.maxX(), b.y}, VLEditControlPointBottomRight}};
}

std::optional<VLEditControlPoint> VLEditItem::fixedPointOfControlPoint(
    const VLEditControlPoint& point) const {
    // A corner stays for an edge too: a drag of an edge mends the other axis afterwards.
    static constexpr uint64_t fixedTypes[] = {
        VLEditControlPointBottomRight, VLEditControlPointBottomLeft, VLEditControlPointBottomLeft,
        VLEditControlPointBottomRight, VLEditControlPointBottomLeft, VLEditControlPointTopRight,
        VLEditControlPointTopLeft,     VLEditControlPointTopLeft};
    if (point.type() >= std::size(fixedTypes)) {
        VLLog("%s - oppositeFixedPointTypeOfControlPointType - fail", "VLEditItem");
        return std::nullopt;
    }
    if (pointsArray_.empty()) return std::nullopt;
    return pointsArray_[fixedTypes[point.type()]];
}

const VLEditControlPoint* VLEditItem::hitControlPoint(VLPoint point,
                                                      std::initializer_list<uint64_t> types) const {
    const VLPoint local = convertPointIn(point);
    for (const VLEditControlPoint& handle : pointsArray_) {
        if (std::find(types.begin(), types.end(), handle.type()) == types.end()) continue;
        if (VLCaptureUtilities::rectWithCenter(handle.point(), resizeReactiveRadius,
                                               resizeReactiveRadius)
                .containsPoint(local))
            return &handle;
    }
    return nullptr;
}

bool VLEditItem::hitResize(VLPoint point, std::initializer_list<uint64_t> types,
                           VLPoint* fixedPoint, uint64_t* hitPointType) const {
    const VLEditControlPoint* handle = hitControlPoint(point, types);
    if (!handle) return false;
    if (hitPointType) *hitPointType = handle->type();
    if (const auto fixed = fixedPointOfControlPoint(*handle); fixed && fixedPoint)
        *fixedPoint = convertPointOut(fixed->point());
    return true;
}

bool VLEditItem::mouseHitCornerResizeControlPoints(VLPoint point, VLPoint* fixedPoint,
                                                   uint64_t* hitPointType) const {
    return hitResize(point, corners, fixedPoint, hitPointType);
}

bool VLEditItem::mouseHitVerticalResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const {
    return hitResize(point, {VLEditControlPointTop, VLEditControlPointBottom}, fixedPoint, nullptr);
}

bool VLEditItem::mouseHitHorizontalResizeControlPoints(VLPoint point, VLPoint* fixedPoint) const {
    return hitResize(point, {VLEditControlPointLeft, VLEditControlPointRight}, fixedPoint, nullptr);
}

bool VLEditItem::mouseHitCornerRotateControlPoints(VLPoint point, uint64_t* hitPointType) const {
    const VLPoint local = convertPointIn(point);
    const auto around = [local](const VLEditControlPoint& handle, double side) {
        return VLCaptureUtilities::rectWithCenter(handle.point(), side, side).containsPoint(local);
    };
    for (const VLEditControlPoint& handle : pointsArray_) {
        if (std::find(corners.begin(), corners.end(), handle.type()) == corners.end()) continue;
        if (!around(handle, rotateReactiveRadius) || around(handle, resizeReactiveRadius)) continue;
        if (hitPointType) *hitPointType = handle.type();
        return true;
    }
    return false;
}

// Drawing --------------------------------------------------------------------------------------

void VLEditItem::drawControlPoints(QPainter& painter) {
    updateControlPoints();
    painter.save();
    painter.translate(center_.x, center_.y);
    painter.rotate(degrees_);
    for (const VLEditControlPoint& handle : pointsArray_) drawDot(painter, handle.point());
    painter.restore();
}

void VLEditItem::drawDot(QPainter& painter, VLPoint at) const {
    painter.setPen(controlPointFillColor.isValid() ? QPen(controlPointFillColor, dotRing)
                                                   : QPen(Qt::NoPen));
    painter.setBrush(controlPointStrokeColor.isValid() ? QBrush(controlPointStrokeColor)
                                                       : QBrush(Qt::NoBrush));
    painter.drawEllipse(toQt(at), dotSize / 2.0, dotSize / 2.0);
}

VLRect VLEditItem::viewRectAround(const VLRect& local, double margin) const {
    const VLRect grown = local.insetBy(-margin, -margin);
    const QRectF around = moveTransform_.mapRect(
        rotateTransform_.mapRect(QRectF(grown.x, grown.y, grown.width, grown.height)));
    return VLRect{around.x(), around.y(), around.width(), around.height()}.insetBy(-antialiasing,
                                                                                   -antialiasing);
}

VLRect VLEditItem::viewRectOfDot(VLPoint local) const {
    const double side = dotSize + dotRing + 2.0 * antialiasing;
    return VLCaptureUtilities::rectWithCenter(convertPointOut(local), side, side);
}

void VLEditItem::appendGraphRects(std::vector<VLRect>& rects) const {
    rects.push_back(viewRectAround(bounds(), normalStrokeWidth_ / 2.0));
}

void VLEditItem::appendDecorationRects(std::vector<VLRect>& rects) const {
    const VLRect b = bounds();
    for (int column = 0; column < 3; ++column)
        for (int row = 0; row < 3; ++row)
            if (column != 1 || row != 1)
                rects.push_back(
                    viewRectOfDot({b.x + b.width * column / 2, b.y + b.height * row / 2}));
}

VLRect VLEditItem::boundingRect() const {
    std::vector<VLRect> rects;
    appendGraphRects(rects);
    appendDecorationRects(rects);
    VLRect all;
    for (const VLRect& rect : rects) all = all.united(rect);
    return all;
}

void VLEditItem::setNeedsDisplay() const {
    if (const auto view = superView()) view->itemDidChange(*this);
}

void VLEditItem::setNeedsDisplayOfNewPart(const VLRect& rect) const {
    if (const auto view = superView()) view->itemDidGrow(*this, rect);
}
