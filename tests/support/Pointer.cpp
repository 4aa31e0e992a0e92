#include "tests/support/Pointer.h"

#include <QCoreApplication>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <utility>

namespace vorla::test {

QWindow* Pointer::window() const {
    return panel_ && panel_->isVisible() ? panel_->windowHandle() : nullptr;
}

void Pointer::moveTo(QPoint at) {
    at_ = at;
    if (window()) QTest::mouseMove(window(), at);
}

/// A press whose window went away must not look held, nor count with the next one.
static void forgetPress() {
    QTestPrivate::qtestMouseButtons = Qt::NoButton;
    QTest::lastMouseTimestamp += 1000;
}

void Pointer::drag(std::vector<QPoint> path, const std::function<void()>& during) {
    size_t next = 1;
    bool over = false;
    QTimer steps;
    QObject::connect(&steps, &QTimer::timeout, [&] {
        if (next < path.size()) {
            moveTo(path[next++]);
            return;
        }
        steps.stop();
        if (during) during();
        over = true;
        if (window())
            QTest::mouseRelease(window(), Qt::LeftButton, {}, at_);
        else
            forgetPress();
    });
    steps.start(0);
    at_ = path.front();
    if (window()) QTest::mousePress(window(), Qt::LeftButton, {}, path.front());
    waitUntil([&over] { return over; });
    runPending();
}

void Pointer::click(QPoint at, int times, Qt::MouseButton button) {
    for (int i = 0; i < times && window(); ++i) {
        // The test library keeps clicks further apart than the desktop's double-click interval.
        if (i > 0) QTest::lastMouseTimestamp -= 499;
        if (button == Qt::LeftButton)
            drag({at});
        else
            QTest::mouseClick(window(), button, {}, at);
    }
}

void Pointer::leave() {
    QEvent event(QEvent::Leave);
    if (window()) QCoreApplication::sendEvent(window(), &event);
}

void Pointer::key(Qt::Key key) {
    if (window()) QTest::keyClick(window(), key);
}

bool waitUntil(const std::function<bool()>& condition) {
    return QTest::qWaitFor(condition, 5000);
}

void runPending() {
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

}  // namespace vorla::test
