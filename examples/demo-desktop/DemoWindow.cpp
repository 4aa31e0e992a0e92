#include "examples/demo-desktop/DemoWindow.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <cstdlib>

namespace vorla::demo {
namespace {

constexpr double kDesignWidth = 1920;
constexpr double kDesignHeight = 1080;

/// Returns when the X server has carried out everything that was sent to it so far.
void waitForServer() {
    const auto* application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!application) return;
    xcb_connection_t* connection = application->connection();
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

QFont fontOf(const QStringList& families, double size, QFont::Weight weight) {
    QFont font;
    font.setFamilies(families);
    // Pixel sizes are whole; the painter is scaled, so a finer size is kept by the transform alone.
    font.setPixelSize(std::max(1, static_cast<int>(size)));
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

}  // namespace

DemoWindow::DemoWindow(const QString& title, const QRectF& frame) {
    setWindowTitle(title);
    setAttribute(Qt::WA_OpaquePaintEvent);
    const double scale = unit();
    const QPointF origin = QGuiApplication::primaryScreen()->geometry().topLeft();
    setGeometry(QRectF(frame.topLeft() * scale + origin, frame.size() * scale).toRect());
}

double DemoWindow::unit() {
    const QSize size = QGuiApplication::primaryScreen()->size();
    return std::min(size.width() / kDesignWidth, size.height() / kDesignHeight);
}

QFont DemoWindow::sans(double size, QFont::Weight weight) {
    return fontOf({"Inter", "Noto Sans CJK SC", "DejaVu Sans"}, size, weight);
}

QFont DemoWindow::mono(double size, QFont::Weight weight) {
    return fontOf({"DejaVu Sans Mono", "Noto Sans Mono CJK SC"}, size, weight);
}

void DemoWindow::paintEvent(QPaintEvent* /*event*/) {
    const double scale = unit();
    {
        QPainter painter(this);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        painter.scale(scale, scale);
        drawContents(painter, QSizeF(size()) / scale);
    }
    if (!painted_) return;
    // The picture leaves for the server when this event is done.
    QTimer::singleShot(0, this, [painted = std::exchange(painted_, nullptr)] {
        waitForServer();
        painted();
    });
}

}  // namespace vorla::demo
