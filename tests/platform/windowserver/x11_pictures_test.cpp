#include <unistd.h>

#include <QElapsedTimer>
#include <cstdlib>
#include <thread>

#include "tests/platform/windowserver/X11TestFixture.h"

namespace vorla::test {
namespace {

/// What the server that this run is on lacks or has, as the test's entry in CMakeLists.txt says.
bool runsWithout(const char* extension) {
    const char* missing = std::getenv("VORLA_TEST_SERVER_ARGS");
    return missing != nullptr && std::string_view(missing).find(extension) != std::string::npos;
}
bool runsWithCompositor() {
    const char* compositor = std::getenv("VORLA_TEST_COMPOSITOR");
    return compositor != nullptr && *compositor != '\0';
}

class X11Pictures : public X11Test {
 protected:
    /// A picture of a window from a session that has its panel up.
    QImage take(xcb_window_t window, WindowPicture picture, const QImage& screen) {
        return server->imageOfWindow(display().displayID, window, picture, screen);
    }
    /// Reads the list and grabs, keeps, and covers the screen, as a session does.
    QImage beginSession() {
        server->windows(display().displayID);
        const QImage screen = screenImage();
        server->keepWindows();
        const QSize size = driver->rootSize();
        open({"--override-redirect", "--pattern", "checker", "--geometry",
              std::to_string(size.width()) + "x" + std::to_string(size.height()) + "+0+0"});
        return screen;
    }
};

TEST_F(X11Pictures, DisplayIsTheRootPixelForPixel) {
    open({"--pattern", "gradient", "--geometry", "700x500+100+100"});
    ASSERT_TRUE(eventually([&] { return screenImage() == driver->rootPixels(); }));
    const Display d = display();
    EXPECT_EQ(screenImage().devicePixelRatio(), d.scale);
    struct Row {
        VLRect rect;  ///< points
        QRect pixels;
    };
    const int h = d.nativeFrame.height;
    const int w = d.nativeFrame.width;
    const auto s = d.scale;
    const Row rows[] = {
        {points({0, 0, 1, 1}, d), {0, 0, 1, 1}},
        {points({130, 140, 33, 21}, d), {130, 140, 33, 21}},
        {{130.25 / s, (h - 200.5) / s, 10.5 / s, 20.25 / s}, {130, 180, 11, 21}},
        {points({-50, -60, 100, 100}, d), {0, 0, 50, 40}},
        {points({w - 10, h - 10, 100, 100}, d), {w - 10, h - 10, 10, 10}},
    };
    for (const Row& row : rows) {
        const QImage image = server->imageOfDisplay(d.displayID, row.rect);
        EXPECT_EQ(image.size(), row.pixels.size());
        QImage plain = image;
        plain.setDevicePixelRatio(1.0);
        EXPECT_EQ(plain, driver->rootPixels(row.pixels));
    }
    for (const VLRect& nothing : {VLRect::null(), VLRect{}, VLRect{10, 10, -5, 5},
                                  VLRect{1e9, 0, 10, 10}, VLRect{-20, -20, 10, 10}})
        EXPECT_TRUE(server->imageOfDisplay(d.displayID, nothing).isNull());
    EXPECT_TRUE(server->imageOfDisplay(d.displayID + 1, whole(d)).isNull());
}

TEST_F(X11Pictures, SegmentsAreReusedButNeverWhileInUse) {
    open({"--pattern", "gradient", "--geometry", "700x500+100+100"});
    server->prepare();
    QImage first = screenImage();
    const QImage untouched = first.copy();
    const uchar* place = first.constBits();
    open({"--pattern", "checker", "--geometry", "700x500+100+100", "--override-redirect"});
    const QImage second = screenImage();
    EXPECT_NE(second.constBits(), place);
    EXPECT_EQ(first, untouched);
    EXPECT_NE(second, untouched);
    first = QImage();
    const QImage third = screenImage();
    if (!runsWithout("MIT-SHM")) {
        EXPECT_EQ(third.constBits(), place) << "the segment came back";
    }
    server.reset();
    EXPECT_EQ(third, second) << "a picture outlives the server";
}

TEST_F(X11Pictures, ImagesMayDieOnOtherThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 20; ++i) {
        QImage image = screenImage();
        ASSERT_FALSE(image.isNull());
        threads.emplace_back([image = std::move(image)]() mutable { image = QImage(); });
    }
    server.reset();
    for (std::thread& thread : threads) thread.join();
}

TEST_F(X11Pictures, HalfCoveredWindowIsGivenWhole) {
    const xcb_window_t back = open({"--pattern", "gradient", "--geometry", "400x300+100+100"});
    const xcb_window_t front = open({"--pattern", "quadrants", "--geometry", "400x300+300+200"});
    const Display d = display();
    const QImage screen = beginSession();
    if (runsWithout("Composite")) {
        const QImage content = take(back, WindowPicture::Content, screen);
        EXPECT_EQ(content.convertToFormat(QImage::Format_RGB32).pixelColor(5, 5),
                  QColor::fromRgb(testPatternPixel(TestPattern::Gradient, 5, 5, 400, 300)));
        return;
    }
    const QImage content = take(back, WindowPicture::Content, screen);
    EXPECT_EQ(content.size(), QSize(400, 300));
    EXPECT_EQ(content.devicePixelRatio(), d.scale);
    EXPECT_EQ(pixelsUnlike(content, TestPattern::Gradient), 0);

    const QImage frame = take(back, WindowPicture::Frame, screen);
    auto extents = driver->propertyWords(back, "_NET_FRAME_EXTENTS");
    extents.resize(4);  // no decorations without a window manager
    const int left = static_cast<int>(extents.at(0));
    const int top = static_cast<int>(extents.at(2));
    EXPECT_EQ(frame.width(), 400 + left + static_cast<int>(extents.at(1)));
    EXPECT_EQ(frame.height(), 300 + top + static_cast<int>(extents.at(3)));
    EXPECT_EQ(pixelsUnlike(frame.copy(left, top, 400, 300), TestPattern::Gradient), 0);

    EXPECT_EQ(pixelsUnlike(take(front, WindowPicture::Content, screen), TestPattern::Quadrants), 0);
    server->releaseWindows();
}

TEST_F(X11Pictures, WindowIsGivenWithoutASessionToo) {
    const xcb_window_t back = open({"--pattern", "gradient", "--geometry", "400x300+100+100"});
    open({"--pattern", "checker", "--override-redirect", "--geometry", "500x500+90+50"});
    if (runsWithout("Composite")) GTEST_SKIP() << "nothing to be had";
    const auto before = driver->resourcesOfProcess(getpid());
    const QImage content = take(back, WindowPicture::Content, QImage());
    EXPECT_EQ(pixelsUnlike(content, TestPattern::Gradient), 0);
    EXPECT_EQ(driver->resourcesOfProcess(getpid()), before);
}

TEST_F(X11Pictures, HungOwnersPartComesFromTheScreen) {
    if (runsWithout("Composite") || runsWithCompositor()) GTEST_SKIP();
    const xcb_window_t hung =
        open({"--pattern", "gradient", "--override-redirect", "--geometry", "400x300+100+100"});
    TestProgram& owner = programs.back();
    open({"--pattern", "quadrants", "--override-redirect", "--geometry", "400x300+300+200"});
    owner.suspend();
    const QImage screen = beginSession();
    QElapsedTimer timer;
    timer.start();
    const QImage image = take(hung, WindowPicture::Frame, screen);
    EXPECT_LT(timer.elapsed(), 1000);
    ASSERT_EQ(image.size(), QSize(400, 300));
    // Its own pixels where it was seen, the screen as the user saw it elsewhere; the panel nowhere.
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 400; ++x) {
            const uint32_t expected = x >= 200 && y >= 100
                                          ? screen.pixel(100 + x, 100 + y)
                                          : testPatternPixel(TestPattern::Gradient, x, y, 400, 300);
            ASSERT_EQ(image.pixel(x, y) & 0xffffffU, expected & 0xffffffU) << x << ", " << y;
        }
    owner.resume();
    server->releaseWindows();
}

TEST_F(X11Pictures, UncoveredWindowCostsTheServerNothing) {
    if (runsWithout("Composite") || runsWithCompositor()) GTEST_SKIP();
    const xcb_window_t window =
        open({"--pattern", "gradient", "--override-redirect", "--geometry", "400x300+100+100"});
    server->prepare();
    const auto before = driver->resourcesOfProcess(getpid());
    const QImage screen = beginSession();
    EXPECT_EQ(driver->resourcesOfProcess(getpid()), before);
    programs.front().suspend();
    const QImage image = take(window, WindowPicture::Frame, screen);
    EXPECT_EQ(pixelsUnlike(image, TestPattern::Gradient), 0) << "had without the owner's help";
    EXPECT_EQ(driver->resourcesOfProcess(getpid()), before);
    programs.front().resume();
}

TEST_F(X11Pictures, AlphaIsKeptAndReadAtTheCentre) {
    if (runsWithout("Composite")) GTEST_SKIP();
    struct Row {
        const char* alpha;
        int byte;
    };
    for (const Row row : {Row{"0.0", 0}, Row{"0.5", 128}, Row{"1.0", 255}}) {
        SCOPED_TRACE(row.alpha);
        const xcb_window_t window =
            open({"--argb", row.alpha, "--override-redirect", "--geometry", "200x100+100+100"});
        EXPECT_NEAR(server->alphaAtCentre(window), row.byte / 255.0, 1e-6);
        server->windows(display().displayID);
        EXPECT_NEAR(server->alphaAtCentre(window), row.byte / 255.0, 1e-6);
        const QImage image = take(window, WindowPicture::Frame, screenImage());
        EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
        EXPECT_EQ(qAlpha(reinterpret_cast<const QRgb*>(image.constScanLine(50))[100]), row.byte);
        programs.clear();
    }
    const xcb_window_t opaque = open({"--geometry", "200x100+100+100"});
    EXPECT_EQ(server->alphaAtCentre(opaque), 1.0);
    programs.clear();
    EXPECT_EQ(server->alphaAtCentre(opaque), 1.0) << "gone";
}

TEST_F(X11Pictures, OwnShadowIsInThePictureWithShadowOnly) {
    const xcb_window_t window = open({"--pattern", "gradient", "--override-redirect", "--geometry",
                                      "220x180+30+40", "--gtk-frame-extents", "10,12,14,16"});
    const QImage screen = screenImage();
    const QImage with = take(window, WindowPicture::FrameWithShadow, screen);
    const QImage without = take(window, WindowPicture::Frame, screen);
    EXPECT_EQ(with.size(), QSize(220, 180));
    EXPECT_EQ(without.size(), QSize(198, 150));
    EXPECT_EQ(pixelsUnlike(with, TestPattern::Gradient), 0);
    EXPECT_EQ(with.copy(10, 14, 198, 150), without);
}

TEST_F(X11Pictures, GoneWindowsGiveNothing) {
    const xcb_window_t window = open({"--geometry", "400x300+100+100"});
    open({"--geometry", "400x300+200+150"});
    const QImage screen = beginSession();
    programs.pop_front();
    EXPECT_TRUE(eventually([&] { return !driver->isViewable(window); }));
    EXPECT_TRUE(take(window, WindowPicture::Frame, screen).isNull());
    for (const uint32_t nonsense : {0U, 1U, 0xffffffffU})
        EXPECT_TRUE(take(nonsense, WindowPicture::Frame, screen).isNull());
    server->releaseWindows();
    server->releaseWindows();
}

}  // namespace
}  // namespace vorla::test
