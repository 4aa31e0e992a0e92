#include "platform/view/VLPanel.h"

#include <QBackingStore>
#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTextEdit>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <cmath>

#include "platform/view/PanelStack.h"
#include "platform/view/PanelSurface.h"
#include "platform/view/VLEventTracker.h"
#include "platform/view/VLOverlayPanel.h"
#include "platform/view/VLView.h"
#include "platform/view/mouseevents.h"

namespace {

/// Whether the responder has something to undo (or to redo) of its own.
bool textTakes(const QWidget* responder, bool undo) {
    if (const auto* text = dynamic_cast<const QTextEdit*>(responder))
        return undo ? text->document()->isUndoAvailable() : text->document()->isRedoAvailable();
    if (const auto* text = dynamic_cast<const QPlainTextEdit*>(responder))
        return undo ? text->document()->isUndoAvailable() : text->document()->isRedoAvailable();
    if (const auto* line = dynamic_cast<const QLineEdit*>(responder))
        return undo ? line->isUndoAvailable() : line->isRedoAvailable();
    return responder != nullptr;
}

/// Keys that type or move in a text. Some texts do something with them and pass them on.
bool belongsToText(const QKeyEvent& event) {
    constexpr auto commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    const int key = event.key();
    const bool types = !(event.modifiers() & commands) && !event.text().isEmpty();
    return (types && key != Qt::Key_Escape) || key == Qt::Key_Return || key == Qt::Key_Enter ||
           key == Qt::Key_Delete || key == Qt::Key_Backspace ||
           (key >= Qt::Key_Home && key <= Qt::Key_PageDown);
}

}  // namespace

VLPanel::VLPanel(int level)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint),
      level_(level) {
    setMouseTracking(true);
    setFocusPolicy(Qt::NoFocus);  // a press on it would take the focus from a text
    // The content view paints every pixel, so neither the system nor the toolkit needs to clear.
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

VLPanel::~VLPanel() {
    vorla::PanelStack::shared().remove(this);
}

void VLPanel::coverScreen(QScreen* screen, const QRect& nativeFrame) {
    setScreen(screen);
    const QRect geometry = screen->geometry();
    const double scale = screen->devicePixelRatio();
    nativeFrame_ = nativeFrame;
    exactSize_ = {static_cast<double>(geometry.width()), static_cast<double>(geometry.height())};
    if (!nativeFrame.isEmpty())
        exactSize_ = {nativeFrame.width() / scale, nativeFrame.height() / scale};
    // Rounded up, for the last row and column belong to the screen.
    constexpr double noise = 1e-6;
    setGeometry(geometry.x(), geometry.y(), static_cast<int>(std::ceil(exactSize_.width - noise)),
                static_cast<int>(std::ceil(exactSize_.height - noise)));
    fitContent();
}

/// Whether the toolkit's whole points make just the native pixels.
bool VLPanel::fitsNatively() const {
    const double scale = vorla::scaleOf(*this);
    return QSize(static_cast<int>(std::lround(width() * scale)),
                 static_cast<int>(std::lround(height() * scale))) == nativeFrame_.size();
}

VLSize VLPanel::extent() const {
    if (!exactSize_.isEmpty()) return exactSize_;
    return {static_cast<double>(width()), static_cast<double>(height())};
}

void VLPanel::setContentView(VLView* view) {
    if (VLView* old = contentView_; old && old != view) {
        old->hide();
        old->deleteLater();
        old->setParent(nullptr);
    }
    contentView_ = view;
    if (!view) return;
    view->setParent(this);
    fitContent();
    view->lower();
    view->show();
}

VLView* VLPanel::contentView() const {
    return contentView_;
}

void VLPanel::fitContent() {
    if (!contentView_) return;
    contentView_->setFrame(bounds());
    contentView_->deriveGeometry();
}

void VLPanel::addChild(VLOverlayPanel* overlay) {
    if (!overlay) return;
    overlay->removeFromParent();
    overlays_.emplace_back(overlay);
    overlay->enterPanel(this, nullptr);
    overlay->orderFront();
}

std::vector<VLOverlayPanel*> VLPanel::overlays() const {
    return VLOverlayPanel::inOrder(overlays_);
}

void VLPanel::makeKeyAndOrderFront() {
    orderFrontRegardless();
    vorla::PanelStack::shared().makeKey(this);
}

void VLPanel::orderFrontRegardless() {
    if (closed_) return;
    if (isVisible()) {
        show();
    } else {
        showPainted();
    }
    vorla::PanelStack::shared().add(this);
}

/// Shows the panel and what has been painted ahead, and paints the rest. The toolkit would mark all
/// of it for painting twice, at once and by posted updates, and wait for the exposure. But the
/// server follows its orders in turn: the pixels reach a window that is on the screen.
void VLPanel::showPainted() {
    setAttribute(Qt::WA_UpdatesDisabled);
    show();
    setAttribute(Qt::WA_UpdatesDisabled, false);
    QCoreApplication::removePostedEvents(this, QEvent::UpdateLater);
    for (QWidget* widget : findChildren<QWidget*>())
        QCoreApplication::removePostedEvents(widget, QEvent::UpdateLater);
    if (!nativeFrame_.isEmpty() && !fitsNatively())
        vorla::PanelStack::shared().surface().coverScreen(*this, nativeFrame_);
    setAttribute(Qt::WA_Mapped);
    awaitsExposure_ = !windowHandle()->isExposed();
    putOnScreen();
    vorla::PanelStack::shared().surface().wasPainted(*this);
    QTimer::singleShot(0, this, [this] {
        // Out of the member first: the call may close the panel.
        if (const auto told = std::exchange(onFirstPaint, nullptr)) told();
    });
}

/// The server puts one band on the screen while we paint the next.
void VLPanel::putOnScreen() {
    QBackingStore* store = backingStore();
    if (!store) return;
    int shown = 0;
    do {
        // One row twice: at scales such as 1.25 a band need not end where a device pixel does.
        const int from = std::max(0, shown - 1);
        store->flush(QRect(0, from, width(), paintedRows_ - from), windowHandle());
        shown = paintedRows_;
    } while (paintBand());
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
    awaitServer();
    setContentView(nullptr);
    for (const auto& overlay : std::exchange(overlays_, {}))
        if (overlay) overlay->closePanel();
    makeFirstResponder(nullptr);
    onFirstPaint = nullptr;
    closed_ = true;
}

void VLPanel::reopen() {
    closed_ = false;
    paintedRows_ = 0;
    // The window is the same as before, but the user's clicks on it belong to something else.
    vorla::forgetClicks();
}

void VLPanel::rehearse() {
    while (paintBand()) {
    }
    vorla::PanelSurface& surface = vorla::PanelStack::shared().surface();
    // What lies outside of the screens is not read by the server, unless its pixels are kept.
    if (surface.keepPixels(*this)) {
        const QRect place = geometry();
        const QRect frame = std::exchange(nativeFrame_, {});
        move(-2 * width(), -2 * height());
        showPainted();
        hide();
        surface.dropPixels(*this);
        nativeFrame_ = frame;
        setGeometry(place);
    }
    paintedRows_ = 0;
}

/// Waits until the server has read what it was given, as the toolkit does before the memory is
/// painted in again: at a session's start the server has other things to do.
void VLPanel::awaitServer() {
    QBackingStore* store = backingStore();
    if (!store) return;
    store->beginPaint(rect());
    store->endPaint();
}

bool VLPanel::paintAhead() {
    return !closed_ && !isVisible() && paintBand();
}

bool VLPanel::paintBand() {
    // Enough bands to keep the server busy, and enough in each for every processor.
    constexpr int bandHeight = 256;
    if (paintedRows_ >= height()) return false;
    winId();
    QBackingStore* store = backingStore();
    if (!store) return false;
    if (store->size() != size()) store->resize(size());
    const QRect band(0, paintedRows_, width(), std::min(bandHeight, height() - paintedRows_));
    store->beginPaint(band);
    {
        QPainter painter(store->paintDevice());
        render(&painter, band.topLeft(), band, DrawChildren);
    }
    store->endPaint();
    paintedRows_ += band.height();
    return true;
}

// Keys -----------------------------------------------------------------------------------------

void VLPanel::makeFirstResponder(QWidget* responder) {
    if (responder == this) responder = nullptr;
    if (firstResponder_ == responder) return;
    if (firstResponder_) firstResponder_->removeEventFilter(this);
    firstResponder_ = responder;
    composing_ = false;
    if (!responder) {
        setFocus(Qt::OtherFocusReason);
        return;
    }
    responder->installEventFilter(this);
    responder->setFocus(Qt::OtherFocusReason);
}

bool VLPanel::editsText() const {
    return firstResponder_ && firstResponder_->testAttribute(Qt::WA_InputMethodEnabled);
}

bool VLPanel::performKeyEquivalent(QKeyEvent& /*event*/) {
    return false;
}

bool VLPanel::routeKeyEquivalent(QKeyEvent& event) {
    auto frontToBack = overlays_;
    frontToBack.clear();
    std::vector<VLOverlayPanel*> stack;
    for (VLOverlayPanel* overlay : overlays()) overlay->appendStack(stack);
    for (VLOverlayPanel* overlay : stack) frontToBack.emplace(frontToBack.begin(), overlay);
    const QPointer<VLPanel> self(this);
    for (const auto& overlay : frontToBack)
        if (overlay && !overlay->isHidden() && overlay->performKeyEquivalent(event)) return true;
    if (self && contentView_ && contentView_->performKeyEquivalent(event)) return true;
    return self && performKeyEquivalent(event);
}

bool VLPanel::interceptKey(QKeyEvent& event) {
    if (event.key() == Qt::Key_Escape) return !composing_ && performKeyEquivalent(event);
    const bool undo = event.matches(QKeySequence::Undo);
    const bool redo = event.matches(QKeySequence::Redo);
    if (!undo && !redo) return false;
    if (textTakes(firstResponder_, undo)) return false;
    return routeKeyEquivalent(event);
}

void VLPanel::watchResponder(const QEvent& event) {
    switch (event.type()) {
        case QEvent::InputMethod:
            composing_ = !static_cast<const QInputMethodEvent&>(event).preeditString().isEmpty();
            break;
        case QEvent::FocusOut:
            composing_ = false;
            break;
        case QEvent::Hide:
            makeFirstResponder(nullptr);
            break;
        default:
            break;
    }
}

bool VLPanel::eventFilter(QObject* receiver, QEvent* event) {
    if (receiver == firstResponder_) watchResponder(*event);
    if (receiver != windowHandle()) return false;
    if (event->type() == QEvent::Expose && windowHandle()->isExposed() && awaitsExposure_)
        return std::exchange(awaitsExposure_, false);
    if (event->type() == QEvent::KeyPress) return interceptKey(*static_cast<QKeyEvent*>(event));
    if (event->type() == QEvent::MouseButtonPress)
        refuseClickFocus(static_cast<QMouseEvent*>(event)->position().toPoint());
    // The window is smaller than whole points by a part of one; the widget keeps them all.
    return event->type() == QEvent::Resize && !nativeFrame_.isEmpty() && !fitsNatively();
}

/// The toolkit's own widgets take the focus when they are clicked.
void VLPanel::refuseClickFocus(QPoint at) const {
    for (QWidget* widget = childAt(at); widget && widget != this; widget = widget->parentWidget())
        if (widget->focusPolicy() & Qt::ClickFocus) widget->setFocusPolicy(Qt::NoFocus);
}

bool VLPanel::focusNextPrevChild(bool /*next*/) {
    return false;
}

void VLPanel::keyPressEvent(QKeyEvent* event) {
    if (editsText() && (composing_ || belongsToText(*event))) return;
    if (!routeKeyEquivalent(*event)) QWidget::keyPressEvent(event);
}

// Presses --------------------------------------------------------------------------------------

void VLPanel::mouseDown(const VLMouseEvent& /*event*/) {}
void VLPanel::rightMouseDown(const VLMouseEvent& /*event*/) {}

void VLPanel::joinModalWindow() {
    QWindow* modal = QGuiApplication::modalWindow();
    if (modal && windowHandle() && modal != windowHandle())
        windowHandle()->setTransientParent(modal);
}

bool VLPanel::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::WinIdChange:
            if (windowHandle()) windowHandle()->installEventFilter(this);
            break;
        case QEvent::ShortcutOverride:
            // While the panel has the keyboard, the host's shortcuts have to wait.
            event->accept();
            return true;
        default:
            break;
    }
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::WindowBlocked) joinModalWindow();
    return handled;
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

void VLPanel::paintEvent(QPaintEvent* event) {
    if (!contentView_) QPainter(this).fillRect(event->rect(), Qt::black);
}

void VLPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fitContent();
}

void VLPanel::closeRequested() {
    closePanel();
}

void VLPanel::closeEvent(QCloseEvent* event) {
    // Refusing would keep the whole application from ending.
    event->accept();
    closeRequested();
}
