// What the pointer selects is what is delivered, pixel for pixel.

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

}  // namespace
}  // namespace vorla::test
