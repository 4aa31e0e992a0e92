#include "platform/view/VLView.h"

#include <QGraphicsOpacityEffect>
#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <cmath>

#include "platform/view/VLPanel.h"
#include "platform/view/mouseevents.h"

namespace {

/// Noise of the divisions by a scale, in points; far less than any device pixel.
constexpr double noise = 1e-6;

/// The whole-number rectangle around an exact one.
QRect wholeAround(const QRectF& exact) {
    const int left = static_cast<int>(std::floor(exact.left() + noise));
    const int top = static_cast<int>(std::floor(exact.top() + noise));
    const int right = static_cast<int>(std::ceil(exact.right() - noise));
    const int bottom = static_cast<int>(std::ceil(exact.bottom() - noise));
    return {left, top, right - left, bottom - top};
}

bool isWhole(double value) {
    return std::abs(value - std::round(value)) < 1e-3;
}

/// One dimension of a view whose superview grows: the sizable ones of low margin, length and high
/// margin share the growth in proportion to what they are, evenly where all are nothing.
void share(double growth, double total, unsigned mask, double& low, double& length) {
    const double parts[3] = {low, length, total - low - length};
    double sum = 0.0;
    int count = 0;
    for (unsigned i = 0; i < 3; ++i)
        if (mask & (1U << i)) sum += parts[i], ++count;
    if (count == 0) return;
    const auto portion = [&](unsigned i) {
        if (!(mask & (1U << i))) return 0.0;
        return sum > 0.0 ? growth * parts[i] / sum : growth / count;
    };
    low += portion(0);
    length += portion(1);
}

}  // namespace

VLView::VLView(VLRect frame, QWidget* superview) : QWidget(superview), frame_(frame) {
    setMouseTracking(true);
    deriveGeometry();
}

void VLView::setFrame(VLRect frame) {
    if (frame == frame_) return;
    const VLRect before = std::exchange(frame_, frame);
    deriveGeometry();
    if (before.size() != frame.size()) resizeSubviews(before.size());
    frameDidChange(before);
}

void VLView::frameDidChange(const VLRect& /*before*/) {}

void VLView::resizeSubviews(VLSize before) {
    for (QObject* child : children()) {
        auto* view = dynamic_cast<VLView*>(child);
        if (!view || view->autoresizing_ == 0) continue;
        VLRect frame = view->frame_;
        share(frame_.width - before.width, before.width, view->autoresizing_ & 7U, frame.x,
              frame.width);
        share(frame_.height - before.height, before.height, view->autoresizing_ >> 3U & 7U, frame.y,
              frame.height);
        view->setFrame(frame);
    }
}

void VLView::setAlphaValue(double alpha) {
    alpha = std::clamp(alpha, 0.0, 1.0);
    if (alpha == alphaValue_) return;
    alphaValue_ = alpha;
    if (alpha == 1.0) {
        setGraphicsEffect(nullptr);
        return;
    }
    auto* effect = qobject_cast<QGraphicsOpacityEffect*>(graphicsEffect());
    if (!effect) {
        effect = new QGraphicsOpacityEffect(this);
        setGraphicsEffect(effect);
    }
    effect->setOpacity(alpha);
}

void VLView::setOpaque(bool opaque) {
    opaque_ = opaque;
    applyOpacity();
}

/// Where an edge cuts a device pixel, the pixel also shows what lies below.
void VLView::applyOpacity() {
    const double scale = backingScale();
    const QPointF corner = mapTo(window(), QPointF());
    const double left = (corner.x() + originInWidget_.x()) * scale;
    const double bottom = (corner.y() + originInWidget_.y()) * scale;
    const bool whole = QRectF(geometry()).size() == QSizeF(frame_.width, frame_.height) &&
                       isWhole(left) && isWhole(bottom) && isWhole(frame_.width * scale) &&
                       isWhole(frame_.height * scale);
    setAttribute(Qt::WA_OpaquePaintEvent, opaque_ && whole);
}

double VLView::backingScale() const {
    return vorla::scaleOf(*this);
}

VLView* VLView::superview() const {
    return dynamic_cast<VLView*>(parentWidget());
}

VLPanel* VLView::panel() const {
    return dynamic_cast<VLPanel*>(window());
}

void VLView::addSubview(VLView* view) {
    const bool wasHidden = view->testAttribute(Qt::WA_WState_ExplicitShowHide) && view->isHidden();
    view->setParent(this);
    view->deriveGeometry();
    view->setVisible(!wasHidden);
    view->raise();
}

void VLView::removeFromSuperview() {
    hide();
    setParent(nullptr);
}

QPointF VLView::widgetPoint(VLPoint point) const {
    return {originInWidget_.x() + point.x, originInWidget_.y() - point.y};
}

VLPoint VLView::viewPoint(QPointF point) const {
    return {point.x() - originInWidget_.x(), originInWidget_.y() - point.y()};
}

void VLView::deriveGeometry() {
    QRectF exact;
    if (const auto* above = dynamic_cast<const VLView*>(parentWidget()))
        exact = QRectF(above->widgetPoint({frame_.x, frame_.maxY()}),
                       above->widgetPoint({frame_.maxX(), frame_.y}));
    else if (const auto* panel = dynamic_cast<const VLPanel*>(parentWidget()))
        exact = {frame_.x, panel->extent().height - frame_.maxY(), frame_.width, frame_.height};
    else if (parentWidget())
        exact = {frame_.x, parentWidget()->height() - frame_.maxY(), frame_.width, frame_.height};
    else
        exact = {frame_.x, frame_.y, frame_.width, frame_.height};
    const QRect whole = wholeAround(exact);
    const QPointF origin(exact.left() - whole.left(), exact.bottom() - whole.top());
    setGeometry(whole);
    if (opaque_) applyOpacity();
    if (origin == originInWidget_) return;
    originInWidget_ = origin;
    // What was drawn, and the subviews, sit on the origin: a move by a part of a point shifts them.
    update();
    for (QObject* child : children())
        if (auto* view = dynamic_cast<VLView*>(child)) view->deriveGeometry();
}

QRect VLView::widgetRect(const VLRect& rect) const {
    return wholeAround(
        QRectF(widgetPoint({rect.x, rect.maxY()}), widgetPoint({rect.maxX(), rect.y})));
}

void VLView::setNeedsDisplayInRect(const VLRect& rect) {
    if (!rect.isEmpty()) update(widgetRect(rect));
}

void VLView::setNeedsDisplayInRects(const std::vector<VLRect>& rects) {
    QRegion region;
    for (const VLRect& rect : rects)
        if (!rect.isEmpty()) region += widgetRect(rect);
    update(region);
}

VLPoint VLView::convertPointFromWindow(VLPoint point) const {
    const QWidget* top = window();
    return viewPoint(mapFrom(top, QPointF(point.x, vorla::heightOf(*top) - point.y)));
}

VLPoint VLView::convertPointToWindow(VLPoint point) const {
    const QWidget* top = window();
    const QPointF inPanel = mapTo(top, widgetPoint(point));
    return {inPanel.x(), vorla::heightOf(*top) - inPanel.y()};
}

VLRect VLView::convertRectFromWindow(const VLRect& rect) const {
    return VLRect::make(convertPointFromWindow(rect.origin()), rect.size());
}

VLRect VLView::convertRectToWindow(const VLRect& rect) const {
    return VLRect::make(convertPointToWindow(rect.origin()), rect.size());
}

VLPoint VLView::convertPointToView(VLPoint point, const VLView& view) const {
    return view.convertPointFromWindow(convertPointToWindow(point));
}

VLRect VLView::convertRectToView(const VLRect& rect, const VLView& view) const {
    return view.convertRectFromWindow(convertRectToWindow(rect));
}

bool VLView::performKeyEquivalent(QKeyEvent& event) {
    std::vector<QPointer<VLView>> frontToBack;
    for (QObject* child : children())
        if (auto* view = dynamic_cast<VLView*>(child); view && !view->isHidden())
            frontToBack.emplace(frontToBack.begin(), view);
    for (const QPointer<VLView>& view : frontToBack)
        if (view && view->performKeyEquivalent(event)) return true;
    return false;
}

bool VLView::event(QEvent* event) {
    // Another screen may have another scale.
    if (opaque_ && event->type() == QEvent::ScreenChangeInternal) applyOpacity();
    return QWidget::event(event);
}

void VLView::drawRect(QPainter& /*painter*/, const VLRect& /*dirtyRect*/) {}

void VLView::paintEvent(QPaintEvent* event) {
    rectsBeingDrawn_.clear();
    VLRect all;
    for (const QRect& rect : event->region()) {
        const VLPoint low = viewPoint(QPointF(rect.x(), rect.y() + rect.height()));
        rectsBeingDrawn_.push_back(
            {low.x, low.y, static_cast<double>(rect.width()), static_cast<double>(rect.height())});
        all = all.united(rectsBeingDrawn_.back());
    }
    QPainter painter(this);
    painter.translate(originInWidget_);
    painter.scale(1.0, -1.0);
    if (QSizeF(size()) != QSizeF(frame_.width, frame_.height))
        painter.setClipRect(QRectF(0.0, 0.0, frame_.width, frame_.height));
    drawRect(painter, all);
}

void VLView::mousePressEvent(QMouseEvent* event) {
    const QPointer<VLView> self(this);  // what the event leads to may delete the view
    passedOn_ = event;
    if (event->button() == Qt::LeftButton) {
        window()->activateWindow();
        mouseDown(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::LeftMouseDown));
    } else if (event->button() == Qt::RightButton) {
        rightMouseDown(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::RightMouseDown));
    } else {
        event->ignore();
    }
    if (self) passedOn_ = nullptr;
}

void VLView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!vorla::repeatsPress(*event)) mousePressEvent(event);
}

void VLView::mouseMoveEvent(QMouseEvent* event) {
    const QPointer<VLView> self(this);  // what the event leads to may delete the view
    passedOn_ = event;
    if (event->buttons() & Qt::LeftButton)
        mouseDragged(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::LeftMouseDragged));
    else
        mouseMoved(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::MouseMoved));
    if (self) passedOn_ = nullptr;
}

void VLView::mouseReleaseEvent(QMouseEvent* event) {
    const QPointer<VLView> self(this);  // what the event leads to may delete the view
    passedOn_ = event;
    if (event->button() == Qt::LeftButton)
        mouseUp(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::LeftMouseUp));
    else
        event->ignore();
    if (self) passedOn_ = nullptr;
}

void VLView::enterEvent(QEnterEvent* event) {
    mouseEntered(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::MouseMoved));
}

void VLView::leaveEvent(QEvent* /*event*/) {
    VLMouseEvent event;
    event.locationInWindow = vorla::pointerLocationInWindow(*window());
    mouseExited(event);
}

void VLView::mouseDown(const VLMouseEvent& /*event*/) {
    if (passedOn_) passedOn_->ignore();
}
void VLView::mouseDragged(const VLMouseEvent& /*event*/) {
    if (passedOn_) passedOn_->ignore();
}
void VLView::mouseUp(const VLMouseEvent& /*event*/) {
    if (passedOn_) passedOn_->ignore();
}
void VLView::rightMouseDown(const VLMouseEvent& /*event*/) {
    if (passedOn_) passedOn_->ignore();
}
void VLView::mouseMoved(const VLMouseEvent& /*event*/) {
    if (passedOn_) passedOn_->ignore();
}
void VLView::mouseEntered(const VLMouseEvent& /*event*/) {}
void VLView::mouseExited(const VLMouseEvent& /*event*/) {}

QImage renderViewTree(VLView& view, const VLRect& rect, double scale) {
    const QSize size(static_cast<int>(std::lround(rect.width * scale)),
                     static_cast<int>(std::lround(rect.height * scale)));
    if (rect.isEmpty() || size.isEmpty()) return {};
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return {};
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    const QRect part = view.widgetRect(rect);
    const QPointF corner = view.widgetPoint({rect.x, rect.maxY()});
    QPainter painter(&image);
    painter.translate(part.topLeft() - corner);
    view.render(&painter, QPoint(), QRegion(part), QWidget::DrawChildren);
    return image;
}
