#include "tools/demo-desktop/DemoWindow.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <cstring>

#include "platform/base/raii.h"

namespace vorla::demo {
namespace {

/// Pixels for each design unit on the primary screen.
double unit() {
    const QSize size = QGuiApplication::primaryScreen()->size();
    return std::min(size.width() / 1920.0, size.height() / 1080.0);
}

xcb_connection_t* connection() {
    const auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return application ? application->connection() : nullptr;
}

/// Returns when the X server has carried out everything that was sent to it so far.
void waitForServer() {
    if (xcb_connection_t* c = connection())
        MallocPtr<void>(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
}

xcb_atom_t atomNamed(xcb_connection_t* c, const char* name) {
    const auto cookie = xcb_intern_atom(c, 0, static_cast<uint16_t>(std::strlen(name)), name);
    const MallocPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(c, cookie, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

}  // namespace

DemoWindow::DemoWindow(const WindowPlan& plan) : plan_(plan) {
    setWindowTitle(QString::fromUtf8(plan.title));
    setAttribute(Qt::WA_OpaquePaintEvent);
    const QPointF origin = QGuiApplication::primaryScreen()->geometry().topLeft();
    const QRectF frame = plan.frame.isEmpty() ? QRectF(QPointF(), screenSize()) : plan.frame;
    setGeometry(QRectF(frame.topLeft() * unit() + origin, frame.size() * unit()).toRect());
}

QSizeF DemoWindow::screenSize() {
    return QSizeF(QGuiApplication::primaryScreen()->size()) / unit();
}

void DemoWindow::becomeDesktop() {
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    xcb_connection_t* c = connection();
    if (!c) return;
    // Window managers read the type when a window is mapped, and the toolkit has no word for this.
    const xcb_atom_t desktop = atomNamed(c, "_NET_WM_WINDOW_TYPE_DESKTOP");
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(winId()),
                        atomNamed(c, "_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1, &desktop);
}

void DemoWindow::paintEvent(QPaintEvent* /*event*/) {
    {
        QPainter painter(this);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(unit(), unit());
        plan_.draw(painter, QSizeF(size()) / unit());
    }
    if (!painted_) return;
    // The picture leaves for the server when this event is done.
    QTimer::singleShot(0, this, [painted = std::exchange(painted_, nullptr)] {
        waitForServer();
        painted();
    });
}

}  // namespace vorla::demo
