#include "examples/demo-desktop/Wallpaper.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <cstdlib>
#include <cstring>

namespace vorla::demo {
namespace {

xcb_atom_t atomNamed(xcb_connection_t* connection, const char* name) {
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<uint16_t>(std::strlen(name)), name);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, cookie, nullptr);
    const xcb_atom_t atom = reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    std::free(reply);
    return atom;
}

/// Window managers read the type when a window is mapped, and the toolkit has no word for this one.
void markAsDesktop(xcb_window_t window) {
    const auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!application) return;
    xcb_connection_t* connection = application->connection();
    const xcb_atom_t desktop = atomNamed(connection, "_NET_WM_WINDOW_TYPE_DESKTOP");
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window,
                        atomNamed(connection, "_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, 32, 1,
                        &desktop);
}

QLinearGradient gradient(QPointF from, QPointF to, QColor first, QColor last) {
    QLinearGradient result(from, to);
    result.setColorAt(0, first);
    result.setColorAt(1, last);
    return result;
}

/// A sheet of light: the area below a wave, brightest at its upper edge.
struct Ribbon {
    double left, middle, right;  // heights of the wave, as fractions of the screen's
    QColor edge;
    double depth;  // how far down the light reaches, as a fraction of the height
};

void drawRibbon(QPainter& painter, const QSizeF& size, const Ribbon& ribbon) {
    const double w = size.width();
    const double h = size.height();
    QPainterPath wave(QPointF(0, ribbon.left * h));
    wave.cubicTo(w * 0.26, (ribbon.left + 0.12) * h, w * 0.34, (ribbon.middle - 0.16) * h, w * 0.56,
                 ribbon.middle * h);
    wave.cubicTo(w * 0.74, (ribbon.middle + 0.13) * h, w * 0.86, (ribbon.right - 0.06) * h, w,
                 ribbon.right * h);
    wave.lineTo(w, h);
    wave.lineTo(0, h);
    wave.closeSubpath();
    QColor end = ribbon.edge;
    end.setAlphaF(0);
    const double top = std::min({ribbon.left, ribbon.middle, ribbon.right}) * h;
    painter.fillPath(wave, gradient({w * 0.3, top - 0.05 * h}, {w * 0.45, top + ribbon.depth * h},
                                    ribbon.edge, end));
}

}  // namespace

Wallpaper::Wallpaper()
    : DemoWindow("Desktop", QRectF(QPointF(), QSizeF(QGuiApplication::primaryScreen()->size()) /
                                                  DemoWindow::unit())) {
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    markAsDesktop(static_cast<xcb_window_t>(winId()));
}

void Wallpaper::drawContents(QPainter& painter, const QSizeF& size) {
    const double w = size.width();
    const double h = size.height();
    QLinearGradient sky({0, 0}, {w * 0.35, h});
    sky.setColorAt(0, QColor(17, 24, 52));
    sky.setColorAt(0.45, QColor(38, 52, 104));
    sky.setColorAt(1, QColor(88, 62, 122));
    painter.fillRect(QRectF(QPointF(), size), sky);

    QRadialGradient glow({w * 0.80, h * 0.12}, w * 0.55);
    glow.setColorAt(0, QColor(255, 158, 128, 150));
    glow.setColorAt(0.5, QColor(214, 96, 150, 60));
    glow.setColorAt(1, QColor(214, 96, 150, 0));
    painter.fillRect(QRectF(QPointF(), size), glow);

    const Ribbon ribbons[] = {
        {0.34, 0.40, 0.14, QColor(255, 146, 138, 70), 0.55},
        {0.50, 0.46, 0.30, QColor(196, 92, 168, 110), 0.60},
        {0.58, 0.62, 0.44, QColor(104, 92, 214, 130), 0.55},
        {0.78, 0.70, 0.66, QColor(48, 142, 214, 130), 0.50},
        {0.86, 0.88, 0.78, QColor(38, 190, 190, 110), 0.40},
    };
    for (const Ribbon& ribbon : ribbons) drawRibbon(painter, size, ribbon);

    painter.fillRect(QRectF(0, h * 0.6, w, h * 0.4),
                     gradient({0, h * 0.6}, {0, h}, QColor(8, 12, 32, 0), QColor(8, 12, 32, 140)));
}

}  // namespace vorla::demo
