#include <unistd.h>

#include <QGuiApplication>
#include <QProcess>
#include <QScreen>
#include <cstdlib>
#include <set>

#include "tests/platform/windowserver/X11TestFixture.h"
#include "tests/support/LogRecorder.h"

namespace vorla::test {
namespace {

bool xrandr(const QString& arguments) {
    return QProcess::execute("xrandr", arguments.split(' ', Qt::SkipEmptyParts)) == 0;
}

class X11Displays : public X11Test {
 protected:
    void SetUp() override {
        X11Test::SetUp();
        server->onDisplaysChanged = [this] {
            ++changes;
            screensAtChange = QGuiApplication::screens().size();
        };
        server->onActiveSpaceChanged = [this] { ++spaceChanges; };
        runEventLoop(200);
        ASSERT_EQ(changes, 0);
    }
    void TearDown() override {
        for (const QString& name : monitors) xrandr("--delmonitor " + name);
        runEventLoop(200);
        X11Test::TearDown();
    }
    void addMonitor(const QString& name, const QString& geometry, const QString& output) {
        ASSERT_TRUE(xrandr("--setmonitor " + name + " " + geometry + " " + output));
        monitors.append(name);
    }
    /// One call comes, and no second one.
    void expectOneChange() {
        EXPECT_TRUE(eventually([&] { return changes > 0; }));
        runEventLoop(300);
        EXPECT_EQ(changes, 1);
        EXPECT_EQ(screensAtChange, static_cast<qsizetype>(server->displays().size()))
            << "the toolkit's list was up to date by then";
        changes = 0;
    }

    int changes = 0;
    int spaceChanges = 0;
    qsizetype screensAtChange = 0;
    QStringList monitors;
};

TEST_F(X11Displays, MonitorsComeAndGoWithOneCallEach) {
    addMonitor("L", "960/250x1080/280+0+0", "screen");
    expectOneChange();
    const uint32_t left = server->displays().at(0).displayID;
    addMonitor("R", "960/250x1000/280+960+80", "none");
    expectOneChange();

    std::vector<Display> displays = server->displays();
    ASSERT_EQ(displays.size(), 2U);
    for (int i = 0; i < 2; ++i) {
        const Display& d = displays[static_cast<size_t>(i)];
        const QScreen* screen = QGuiApplication::screens().at(i);
        EXPECT_EQ(d.name, screen->name().toStdString()) << "in the toolkit's order";
        EXPECT_EQ(d.scale, screen->devicePixelRatio());
    }
    const Display& r = displays[0].name == "R" ? displays[0] : displays[1];
    const Display& l = displays[0].name == "R" ? displays[1] : displays[0];
    EXPECT_EQ(l.displayID, left) << "stays the same while it stays connected";
    EXPECT_NE(r.displayID, left);
    EXPECT_EQ(r.nativeFrame, (PixelRect{960, 80, 960, 1000}));
    EXPECT_EQ(r.frame, (VLRect{960 / r.scale, 0, 960 / r.scale, 1000 / r.scale}));

    // Pictures and windows are in the space of the display that is asked.
    const xcb_window_t window =
        open({"--pattern", "gradient", "--override-redirect", "--geometry", "200x100+1000+580"});
    const VLRect local{40 / r.scale, (1000 - 600) / r.scale, 200 / r.scale, 100 / r.scale};
    EXPECT_EQ(pixelsUnlike(server->imageOfDisplay(r.displayID, local), TestPattern::Gradient), 0);
    const auto list = server->windows(r.displayID);
    ASSERT_TRUE(list && !list->empty());
    EXPECT_EQ(list->front().number, window);
    EXPECT_EQ(list->front().bounds.offsetBy(-r.frame.x, -r.frame.y), local);
    EXPECT_EQ(server->imageOfDisplay(r.displayID, whole(r)).size(), QSize(960, 1000));

    ASSERT_TRUE(xrandr("--delmonitor R"));
    expectOneChange();
    EXPECT_TRUE(server->imageOfDisplay(r.displayID, whole(r)).isNull());
    EXPECT_FALSE(server->windows(r.displayID));
    EXPECT_EQ(server->displays().size(), 1U);
}

TEST_F(X11Displays, WorkspaceChangeDuringACallIsNotLost) {
    driver->switchWorkspace(1);
    // The announcement comes in together with answers, so that the socket falls silent before the
    // event loop looks at it.
    for (int i = 0; i < 20; ++i) server->windows(display().displayID);
    EXPECT_TRUE(eventually([&] { return spaceChanges == 1; }));
    driver->switchWorkspace(0);
    EXPECT_TRUE(eventually([&] { return spaceChanges == 2; }));
}

TEST_F(X11Displays, LostConnectionGivesEmptyValues) {
    const auto known = driver->clientsOfProcess(getpid());
    std::set<uint32_t> others(known.begin(), known.end());
    WindowServer::setShared(nullptr);
    const std::shared_ptr<WindowServer> server = WindowServer::shared();
    this->server = nullptr;
    ASSERT_TRUE(server->isConnected());
    const Display d = server->displays().at(0);
    server->prepare();
    const xcb_window_t window = open({"--geometry", "300x200+100+100"});
    QImage screen = server->imageOfDisplay(d.displayID, whole(d));
    const QImage untouched = screen.copy();
    server->keepWindows();
    for (const uint32_t client : driver->clientsOfProcess(getpid()))
        if (others.count(client) == 0) driver->killClient(client);

    const LogRecorder log;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(server->displays().empty());
        EXPECT_FALSE(server->windows(d.displayID));
        EXPECT_TRUE(server->imageOfDisplay(d.displayID, whole(d)).isNull());
        EXPECT_TRUE(
            server->imageOfWindow(d.displayID, window, WindowPicture::Frame, screen).isNull());
        EXPECT_EQ(server->alphaAtCentre(window), 1.0);
        EXPECT_EQ(server->activeApplicationName(), "");
        server->keepWindows();
        server->releaseWindows();
        server->prepare();
        runEventLoop(50);
    }
    EXPECT_EQ(screen, untouched);
    screen = QImage();
    EXPECT_THAT(log.lines(), testing::ElementsAre(testing::HasSubstr("lost")));
    const auto next = WindowServer::shared();
    ASSERT_TRUE(next);
    EXPECT_NE(next, server) << "a broken one is replaced";
    EXPECT_FALSE(next->displays().empty());
    WindowServer::setShared(nullptr);
}

TEST_F(X11Displays, WithoutAServerThereIsNone) {
    const std::string display = std::getenv("DISPLAY");
    const LogRecorder log;
    setenv("DISPLAY", ":4095", 1);
    EXPECT_FALSE(WindowServer::connect());
    unsetenv("DISPLAY");
    EXPECT_FALSE(WindowServer::connect());
    EXPECT_EQ(log.lines().size(), 2U);
    WindowServer::setShared(nullptr);
    EXPECT_FALSE(WindowServer::shared());
    setenv("DISPLAY", display.c_str(), 1);
    const auto shared = WindowServer::shared();
    ASSERT_TRUE(shared) << "tried again";
    EXPECT_EQ(WindowServer::shared(), shared);
    WindowServer::setShared(nullptr);
}

}  // namespace
}  // namespace vorla::test
