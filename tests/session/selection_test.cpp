// What the pointer selects is what is delivered, pixel for pixel.

#include <functional>

#include "tests/session/SessionTest.h"

namespace vorla::test {
namespace {

class Selection : public SessionTest {};

TEST_F(Selection, ClickTakesAHalfCoveredWindowsOwnPicture) {
    openWallpaper();
    const xcb_window_t below = open({"--geometry", "500x400+200+150", "--pattern", "gradient"});
    open({"--geometry", "500x400+450+300", "--pattern", "checker", "--class", "Cover"});
    ASSERT_EQ(begin(), 1);
    driver->moveTo(300, 250);
    shot("highlight");
    driver->click(300, 250);
    shot("clicked");
    driver->key("Return");
    const QImage picture = host().delivered();
    const QRect frame = frameOf(below);
    const QRect content = driver->contentRect(below);
    EXPECT_EQ(picture.size(), frame.size());
    EXPECT_TRUE(samePixels(picture.copy(content.translated(-frame.topLeft())),
                           patternImage(TestPattern::Gradient, content.size())));
}

TEST_F(Selection, ClickOnTheActiveWindowTakesItAsItLooks) {
    openWallpaper();
    const xcb_window_t window = open({"--geometry", "500x400+200+150", "--pattern", "gradient"});
    const QImage screen = stillScreen();
    ASSERT_EQ(begin(), 1);
    driver->click(300, 250);
    driver->key("Return");
    EXPECT_TRUE(samePixels(host().delivered(), screen.copy(frameOf(window))));
}

TEST_F(Selection, DragTakesExactlyTheDraggedPixels) {
    openWallpaper();
    const QImage screen = stillScreen();
    const int right = screen.width() - 1;
    const int bottom = screen.height() - 1;
    const struct {
        const char* name;
        QPoint from, to;
        QRect wanted;
    } rows[] = {
        {"down right", {400, 300}, {801, 603}, {400, 300, 401, 303}},
        {"one pixel", {50, 60}, {51, 61}, {50, 60, 1, 1}},
        {"whole screen", {0, 0}, {right, bottom}, {0, 0, right + 1, bottom + 1}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_EQ(begin(), 1);
        driver->drag(row.from, row.to);
        shot(row.name);
        driver->key("Return");
        EXPECT_TRUE(samePixels(host().delivered(), screen.copy(row.wanted)));
    }
}

TEST_F(Selection, EveryWayOfFinishingDelivers) {
    openWallpaper();
    const xcb_window_t window = open({"--geometry", "500x400+900+150", "--pattern", "gradient"});
    const QImage screen = stillScreen();
    const QRect region(400, 300, 300, 200);
    const auto drag = [&] { driver->drag(region.topLeft(), {700, 500}, 3); };
    const auto click = [&](QPoint at, int times) {
        for (int i = 0; i < times; ++i) {
            driver->click(at.x(), at.y());
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
        }
    };
    const struct {
        const char* name;
        std::function<void()> finish;
        QRect wanted;
    } rows[] = {
        {"double click outside",
         [&] {
             drag(), click({100, 900}, 2);
         },
         region},
        {"double click on a window",
         [&] {
             click({1000, 300}, 2);
         },
         frameOf(window)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_EQ(begin(), 1);
        row.finish();
        EXPECT_TRUE(samePixels(host().delivered(), screen.copy(row.wanted)));
    }
}

}  // namespace
}  // namespace vorla::test
