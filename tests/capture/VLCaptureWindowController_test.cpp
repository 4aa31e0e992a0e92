#include "capture/VLCaptureWindowController.h"

#include "platform/base/Bundle.h"
#include "tests/capture/SessionTest.h"

namespace {

using vorla::test::denseScreen;
using vorla::test::firstScreen;
using vorla::test::negativeScreen;

class WindowController : public Session {
 protected:
    /// The records of a screen by window number, the Desktop record as 0.
    std::vector<uint32_t> listed(size_t screen = 0) {
        start();
        std::vector<uint32_t> numbers;
        for (const auto& info : controllers().at(screen)->windowInfoArray())
            numbers.push_back(info->name == "Desktop" ? 0 : info->windowID);
        return numbers;
    }
};

TEST_F(WindowController, ListsWhatCanBeSnappedTo) {
    vorla::HostIdentity::setDisplayName("test host");
    server_->setWindows(std::vector{
        serverWindow(1, {10, 10, 50, 50}, 26, "test host"),  // the host's own panels
        serverWindow(2, {10, 10, 50, 50}, 25, "test host"),
        serverWindow(3, {10, 10, 50, 50}, 26, "menu"),
        serverWindow(4, {10, 10, 50, 50}, -1),
        serverWindow(5, {0, 0, 1280, 800}),  // fills the screen
        serverWindow(6, {0, 0, 1280, 799}),
        serverWindow(7, {-100, 0, 1500, 900}),  // sticks out on all sides
        serverWindow(8, {1280, 0, 50, 50}),     // next to the screen
        serverWindow(9, {1279, 799, 50, 50}),
        serverWindow(10, {20, 20, 0, 50}),
    });
    EXPECT_EQ(listed(), std::vector<uint32_t>({2, 3, 6, 7, 9, 0}));
    const auto& desktop = controllers()[0]->windowInfoArray().back();
    EXPECT_EQ(desktop->windowFrame, (VLRect{0, 0, 1280, 800}));
    EXPECT_EQ(server_->keeps, 1);
}

TEST_F(WindowController, MakesFramesLocalToTheScreen) {
    server_->setDisplays({firstScreen, denseScreen, negativeScreen});
    server_->setWindows(std::vector{serverWindow(1, {1260, 700, 100, 60}, 0, "Google Chrome"),
                                    serverWindow(2, {-600, -90, 20, 30}, 0, "Ibis浏览器")});
    start();
    EXPECT_EQ(server_->keeps, 1) << "again, it would keep what our panels hide";
    const std::vector<VLRect> expected[] = {
        {{1260, 40, 100, 60}, {0, 0, 1280, 800}},
        {{-10, 20, 50, 30}, {0, 0, 640, 400}},
        {{40, 440, 20, 30}, {0, 0, 640, 480}},
    };
    for (size_t screen = 0; screen < 3; ++screen) {
        const auto& records = controllers()[screen]->windowInfoArray();
        ASSERT_EQ(records.size(), 2U);
        for (size_t i = 0; i < 2; ++i) EXPECT_EQ(records[i]->windowFrame, expected[screen][i]);
        EXPECT_TRUE(std::dynamic_pointer_cast<VLSpecialWindowInfo>(records[0]));
        EXPECT_FALSE(std::dynamic_pointer_cast<VLSpecialWindowInfo>(records[1]));
        EXPECT_EQ(records[0]->displayID, screen + 1);
        EXPECT_EQ(records[1]->scaleFactor, screen == 1 ? 2.0 : 1.0);
    }
}

TEST_F(WindowController, HitsTheFrontmostWindowThatIsNotTransparent) {
    auto glass = serverWindow(1, {10, 10, 50, 50});
    glass.alpha = 0.005;
    auto tinted = serverWindow(2, {100, 10, 50, 50});
    tinted.alpha = 0.02;
    server_->setWindows(std::vector{glass, tinted, serverWindow(3, {10, 10, 140, 30})});
    start();
    const std::pair<VLPoint, const char*> cases[] = {
        {{20, 780}, "3"},    {{110, 780}, "2"}, {{20, 750}, "Desktop"},    {{150, 780}, "Desktop"},
        {{149.9, 780}, "2"}, {{100, 740}, "2"}, {{100, 739.9}, "Desktop"},
    };
    for (const auto& [point, expected] : cases) {
        const auto info = controllers()[0]->windowInfoAtPostion(point);
        EXPECT_EQ(info->pid == -1 && info->level == -1 ? "Desktop" : std::to_string(info->windowID),
                  expected)
            << point.x << "," << point.y;
    }
    EXPECT_EQ(server_->windowGrabs, 0);
    // A click on the desktop takes the whole screen from the surface.
    pointer().click({600, 600});
    pointer().key(Qt::Key_Return);
    ASSERT_EQ(host_->delivered.size(), 1U);
    EXPECT_EQ(host_->delivered[0].image.convertToFormat(QImage::Format_RGB32),
              server_->imageOfDisplay(1, {0, 0, 1280, 800}));
}

TEST_F(WindowController, IsNotMadeWithoutAScreen) {
    EXPECT_FALSE(VLCaptureWindowController::create({0, 0, 100, 100}, {}));
}

}  // namespace
