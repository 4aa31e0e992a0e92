#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QImage>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "tests/session/HostProgram.h"
#include "tests/support/TestPattern.h"
#include "tests/support/XTestDriver.h"

namespace vorla::test {

/// A user in front of a real desktop with client programs and a running host. Native pixels, y
/// downward, as everywhere in the tests of the whole.
///
/// One host serves all cases of a program, each of which must leave it without a session.
class SessionTest : public testing::Test {
 protected:
    static void TearDownTestSuite();
    void SetUp() override;
    void TearDown() override;

    /// The shared host; started when it is first wanted, and anew after one that was ended.
    static HostProgram& host();
    static void endHost();
    enum class Screen { Still, AsItIs };
    /// Starts a session, on a screen that has come to rest where that matters; the number of
    /// panels, once one has the keyboard.
    int begin(HostProgram& program, Screen screen = Screen::Still);
    int begin() { return begin(host()); }

    /// A client window, painted and settled. Options are those of vorla-test-client.
    xcb_window_t open(const std::vector<std::string>& options);
    /// The same for a window that panels will cover at once, so that it is never painted.
    xcb_window_t openCovered(const std::vector<std::string>& options);
    /// The desktop's own window over the whole root, every pixel of which can be told from its
    /// neighbours.
    void openWallpaper();
    void closeClients();

    /// Waits until the picture of the screen no longer changes, and returns it.
    QImage stillScreen();
    /// Whether a part of the screen comes to look as it does in a picture of the whole.
    testing::AssertionResult comesToShow(const QImage& picture, const QRect& part);
    /// Saves the screen as it is for people to look at, where VORLA_TEST_SHOTS names a folder.
    void shot(const std::string& step);

    /// The window with its decorations, on the root.
    QRect frameOf(xcb_window_t window);
    /// Viewable windows on the root, bottom to top, that belong to the host.
    std::vector<xcb_window_t> panelsOf(HostProgram& program);
    /// Panels of the host that are not all on top of every other window.
    bool panelsAreOnTop(HostProgram& program);

    std::unique_ptr<XTestDriver> driver;

 private:
    static std::unique_ptr<HostProgram>& sharedHost();
    xcb_window_t rootChildOf(xcb_window_t window);
    std::vector<xcb_window_t> rootChildren();

    std::deque<TestProgram> clients_;
    QImage atRest_;  ///< the desktop since the last window was opened
    int shots_ = 0;
};

/// Whether two pictures have the same size and colours; says where they differ first.
testing::AssertionResult samePixels(const QImage& actual, const QImage& expected);
QImage patternImage(TestPattern pattern, QSize size);

}  // namespace vorla::test
