#include "platform/view/VLView.h"

#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <cmath>

#include "platform/view/mouseevents.h"

VLView::VLView(VLRect frame, QWidget* superview) : QWidget(superview), frame_(frame) {
    setMouseTracking(true);
    deriveGeometry();
}

void VLView::setFrame(VLRect frame) {
    if (frame == frame_) return;
    frame_ = frame;
    deriveGeometry();
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
    else if (parentWidget())
        exact = {frame_.x, parentWidget()->height() - frame_.maxY(), frame_.width, frame_.height};
    else
        exact = {frame_.x, frame_.y, frame_.width, frame_.height};
    const QRect whole = exact.toAlignedRect();
    const QPointF origin(exact.left() - whole.left(), exact.bottom() - whole.top());
    setGeometry(whole);
    if (origin == originInWidget_) return;
    originInWidget_ = origin;
    // What was drawn, and the subviews, sit on the origin: a move by a part of a point shifts them.
    update();
    for (QObject* child : children())
        if (auto* view = dynamic_cast<VLView*>(child)) view->deriveGeometry();
}

QRect VLView::widgetRect(const VLRect& rect) const {
    return QRectF(widgetPoint({rect.x, rect.maxY()}), widgetPoint({rect.maxX(), rect.y}))
        .toAlignedRect();
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
    const QWidget* panel = window();
    const QPointF inPanel(point.x, panel->height() - point.y);
    return viewPoint(mapFrom(panel, inPanel));
}

VLPoint VLView::convertPointToWindow(VLPoint point) const {
    const QWidget* panel = window();
    const QPointF inPanel = mapTo(panel, widgetPoint(point));
    return {inPanel.x(), panel->height() - inPanel.y()};
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
    drawRect(painter, all);
}

void VLView::mousePressEvent(QMouseEvent* event) {
    passedOn_ = event;
    if (event->button() == Qt::LeftButton) {
        window()->activateWindow();
        mouseDown(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::LeftMouseDown));
    } else if (event->button() == Qt::RightButton) {
        rightMouseDown(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::RightMouseDown));
    } else {
        event->ignore();
    }
    passedOn_ = nullptr;
}

void VLView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!vorla::repeatsPress(*event)) mousePressEvent(event);
}

void VLView::mouseMoveEvent(QMouseEvent* event) {
    passedOn_ = event;
    if (event->buttons() & Qt::LeftButton)
        mouseDragged(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::LeftMouseDragged));
    else
        mouseMoved(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::MouseMoved));
    passedOn_ = nullptr;
}

void VLView::mouseReleaseEvent(QMouseEvent* event) {
    passedOn_ = event;
    if (event->button() == Qt::LeftButton)
        mouseUp(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::LeftMouseUp));
    else
        event->ignore();
    passedOn_ = nullptr;
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
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) return {};
    image.setDevicePixelRatio(scale);
    image.fill(Qt::black);
    const QRect part = view.widgetRect(rect);
    const QPointF corner = view.widgetPoint({rect.x, rect.maxY()});
    QPainter painter(&image);
    painter.translate(part.topLeft() - corner);
    view.render(&painter, QPoint(), QRegion(part), QWidget::DrawChildren);
    return image;
}
