#pragma once

// What the benchmarks of a session share: waiting, processor time, memory, the plainest overlay.

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <QAbstractEventDispatcher>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

#include "tests/support/XTestDriver.h"

namespace vorla::bench {

using vorla::test::XTestDriver;

inline double since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

inline double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Runs the event loop, asleep between events, until the test holds or a while has passed.
inline bool spinUntil(const std::function<bool()>& done, int milliseconds = 5000) {
    QEventLoop loop;
    QTimer limit;
    QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
    limit.setSingleShot(true);
    limit.start(milliseconds);
    QObject::connect(loop.thread()->eventDispatcher(), &QAbstractEventDispatcher::awake, &loop,
                     [&] {
                         if (done()) loop.quit();
                     });
    if (!done()) loop.exec();
    return done();
}

inline void rest(int milliseconds) {
    spinUntil([] { return false; }, milliseconds);
}

/// The plainest overlay that a toolkit program can be: the picture in one full-screen widget, and a
/// rectangle that follows the pointer.
class BareOverlay : public QWidget {
 public:
    BareOverlay()
        : QWidget(nullptr, Qt::FramelessWindowHint | Qt::BypassWindowManagerHint),
          picture_(QGuiApplication::primaryScreen()->grabWindow(0).toImage()) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setMouseTracking(true);
        setGeometry(QGuiApplication::primaryScreen()->geometry());
        show();
        activateWindow();
    }

 protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        painter.drawImage(event->rect().topLeft(), picture_, event->rect());
        painter.setPen(QPen(Qt::red, 2));
        painter.drawRect(rect_);
    }
    void mouseMoveEvent(QMouseEvent* event) override {
        const QRect before = rect_;
        rect_ = QRect(QPoint(width() / 4, height() / 4), event->pos()).normalized();
        update(before.united(rect_).adjusted(-3, -3, 3, 3));
    }

 private:
    QImage picture_;
    QRect rect_;
};

inline pid_t serverPid(xcb_connection_t* connection) {
    ucred peer = {};
    socklen_t size = sizeof peer;
    getsockopt(xcb_get_file_descriptor(connection), SOL_SOCKET, SO_PEERCRED, &peer, &size);
    return peer.pid;
}

/// Processor time in milliseconds that a process has had, from the scheduler's own count.
inline double processorTime(pid_t pid) {
    QFile file(QStringLiteral("/proc/%1/schedstat").arg(pid));
    if (!file.open(QIODevice::ReadOnly)) return 0.0;
    return file.readAll().split(' ').first().toDouble() / 1e6;
}

inline double ownProcessorTime() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto milliseconds = [](timeval t) {
        return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_usec) / 1e3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

struct MoveCost {
    double own = 0.0;
    double server = 0.0;
};

inline constexpr int moves = 200;

/// Moves the pointer along a path from another process, so that sending the events is not counted
/// as ours.
inline MoveCost costOfMoves(XTestDriver& driver, const std::function<QPoint(int)>& path) {
    const pid_t server = serverPid(driver.connection());
    rest(100);
    const double ownBefore = ownProcessorTime();
    const double serverBefore = processorTime(server);
    const pid_t mover = fork();
    if (mover == 0) {
        const auto hand = XTestDriver::create();
        for (int i = 0; hand && i < moves; ++i) {
            const QPoint place = path(i);
            hand->moveTo(place.x(), place.y());
            usleep(8000);
        }
        _exit(0);
    }
    QTimer wake;
    wake.start(50);
    spinUntil([mover] { return waitpid(mover, nullptr, WNOHANG) == mover; }, 60000);
    rest(30);
    return {(ownProcessorTime() - ownBefore) / moves,
            (processorTime(server) - serverBefore) / moves};
}

/// A value of /proc/self/status in KiB.
inline double statusValue(const char* key) {
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly)) return 0.0;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith(key)) return line.simplified().split(' ').value(1).toDouble();
    return 0.0;
}

inline void resetPeak() {
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly)) file.write("5");
}

}  // namespace vorla::bench
