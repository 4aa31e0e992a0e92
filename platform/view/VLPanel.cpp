#include "platform/view/VLPanel.h"

#include <QBackingStore>
#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <cmath>

#include "platform/view/PanelStack.h"
#include "platform/view/VLEventTracker.h"
#include "platform/view/VLView.h"
#include "platform/view/mouseevents.h"

VLPanel::VLPanel(int level)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint),
      level_(level) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    // The content view paints every pixel, so neither the system nor the toolkit needs to clear.
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

VLPanel::~VLPanel() {
    vorla::PanelStack::shared().remove(this);
}

void VLPanel::coverScreen(QScreen* screen) {
    setScreen(screen);
    const QRectF exact = screen->geometry();
    // At scales such as 1.25 the screen's size in points need not be whole: rounding up covers the
    // last row, and the part of a pixel that is too much lies outside the screen.
    setGeometry(screen->geometry().x(), screen->geometry().y(),
                static_cast<int>(std::ceil(exact.width())),
                static_cast<int>(std::ceil(exact.height())));
}

void VLPanel::setContentView(VLView* view) {
    if (VLView* old = contentView(); old && old != view) {
        old->hide();
        old->deleteLater();
        old->setParent(nullptr);
    }
    if (!view) return;
    view->setParent(this);
    view->setFrame({0.0, 0.0, static_cast<double>(width()), static_cast<double>(height())});
    view->deriveGeometry();
    view->show();
}

VLView* VLPanel::contentView() const {
    for (QObject* child : children())
        if (auto* view = dynamic_cast<VLView*>(child)) return view;
    return nullptr;
}

void VLPanel::makeKeyAndOrderFront() {
    orderFrontRegardless();
    vorla::PanelStack::shared().makeKey(this);
}

void VLPanel::orderFrontRegardless() {
    if (closed_) return;
    show();
    vorla::PanelStack::shared().add(this);
}

void VLPanel::closePanel() {
    if (closed_) return;
    closed_ = true;
    // The keyboard goes back first: a focus that falls to the root window when the panel goes is a
    // window manager's to give away, and it may think of another window.
    vorla::PanelStack::shared().remove(this);
    hide();
    VLEventTracker::whenIdle(this, [this] { dispose(); });
}

void VLPanel::dispose() {
    deleteLater();
}

void VLPanel::shelve() {
    setContentView(nullptr);
    onFirstPaint = nullptr;
    closed_ = true;
}

void VLPanel::reopen() {
    closed_ = false;
    painted_ = false;
    // The window is the same as before, but the user's clicks on it belong to something else.
    vorla::forgetClicks();
}

void VLPanel::prepareBackingStore() {
    winId();
    QBackingStore* store = backingStore();
    if (!store) return;
    store->resize(size());
    const QRect all(QPoint(), size());
    store->beginPaint(all);
    if (auto* memory = dynamic_cast<QImage*>(store->paintDevice())) memory->fill(Qt::black);
    store->endPaint();
}

bool VLPanel::performKeyEquivalent(QKeyEvent* /*event*/) {
    return false;
}
void VLPanel::mouseDown(const VLMouseEvent& /*event*/) {}
void VLPanel::rightMouseDown(const VLMouseEvent& /*event*/) {}

void VLPanel::joinModalWindow() {
    QWindow* modal = QGuiApplication::modalWindow();
    if (modal && windowHandle() && modal != windowHandle())
        windowHandle()->setTransientParent(modal);
}

bool VLPanel::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::WindowBlocked) joinModalWindow();
    // The update request is where the toolkit paints the dirty region and hands it to the screen.
    const bool flushed = event->type() == QEvent::UpdateRequest || event->type() == QEvent::Paint;
    if (flushed && !painted_ && isVisible()) {
        painted_ = true;
        QTimer::singleShot(0, this, [this] {
            if (onFirstPaint) onFirstPaint();
        });
    }
    return handled;
}

void VLPanel::keyPressEvent(QKeyEvent* event) {
    if (!performKeyEquivalent(event)) QWidget::keyPressEvent(event);
}

void VLPanel::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        activateWindow();
        mouseDown(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::LeftMouseDown));
    } else if (event->button() == Qt::RightButton) {
        rightMouseDown(vorla::mouseEvent(*event, *this, VLMouseEvent::Type::RightMouseDown));
    }
}

void VLPanel::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!vorla::repeatsPress(*event)) mousePressEvent(event);
}

void VLPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (VLView* view = contentView())
        view->setFrame({0.0, 0.0, static_cast<double>(width()), static_cast<double>(height())});
}

void VLPanel::closeRequested() {
    closePanel();
}

void VLPanel::closeEvent(QCloseEvent* event) {
    // Refusing would keep the whole application from ending.
    event->accept();
    closeRequested();
}
