#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>
#include <algorithm>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/windowserver/WindowServer.h"
#include "tests/support/TestPattern.h"
#include "tests/support/TestProgram.h"
#include "tests/support/XTestDriver.h"

namespace vorla::test {

/// A window server on the real display, client programs on it, and a driver to look past both.
class X11Test : public testing::Test {
 protected:
    void SetUp() override {
        server = WindowServer::connect();
        driver = XTestDriver::create();
        ASSERT_TRUE(server);
        ASSERT_TRUE(driver);
    }

    /// Waits until the window manager has seen its clients go: the server gives their numbers to
    /// the next test's windows, which the manager would take for the old ones.
    void TearDown() override {
        programs.clear();
        EXPECT_TRUE(eventually([&] {
            return driver->propertyWords(driver->screen()->root, "_NET_CLIENT_LIST").empty();
        }));
        runEventLoop(30);
    }

    /// Starts a client window and waits until it is painted, in its place, and the screen is still:
    /// a window manager raises a new window a little later, and what that shows is painted anew.
    xcb_window_t open(const std::vector<std::string>& arguments) {
        programs.emplace_back(arguments);
        const xcb_window_t window = programs.back().waitUntilReady();
        EXPECT_NE(window, 0U);
        QImage before;
        EXPECT_TRUE(eventually([&] {
            QThread::msleep(10);
            const QImage now = driver->rootPixels();
            return std::exchange(before, now) == now;
        }));
        return window;
    }

    Display display() { return server->displays().at(0); }
    static VLRect whole(const Display& d) { return {0, 0, d.frame.width, d.frame.height}; }
    QImage screenImage() {
        const Display d = display();
        return server->imageOfDisplay(d.displayID, whole(d));
    }

    std::optional<ServerWindow> entry(xcb_window_t number) {
        const auto list = server->windows(display().displayID);
        if (!list) return std::nullopt;
        const auto found = std::find_if(list->begin(), list->end(),
                                        [&](const ServerWindow& w) { return w.number == number; });
        return found == list->end() ? std::nullopt : std::optional(*found);
    }

    /// Runs the event loop until the condition holds; false when it does not in time.
    template <typename Condition>
    bool eventually(Condition condition, int milliseconds = 3000) {
        return test::eventually(condition, milliseconds, [] {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            QThread::msleep(2);
        });
    }
    void runEventLoop(int milliseconds) {
        eventually([] { return false; }, milliseconds);
    }

    /// A native rectangle in the points of the first display.
    static VLRect points(const QRect& r, const Display& d) {
        return {r.x() / d.scale, (d.nativeFrame.height - r.y() - r.height()) / d.scale,
                r.width() / d.scale, r.height() / d.scale};
    }

    std::unique_ptr<WindowServer> server;
    std::unique_ptr<XTestDriver> driver;
    std::deque<TestProgram> programs;
};

/// Number of pixels of an image that differ from a pattern of the size of the image, within a
/// rectangle of it.
inline int pixelsUnlike(const QImage& image, TestPattern pattern, QRect rect = {}) {
    if (rect.isNull()) rect = image.rect();
    int count = 0;
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            if ((image.pixel(x, y) & 0xffffffU) !=
                testPatternPixel(pattern, x, y, image.width(), image.height()))
                ++count;
    return count;
}

}  // namespace vorla::test
