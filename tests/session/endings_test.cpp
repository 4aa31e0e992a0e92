// However a session ends, the desktop is as it was: no panel, no grab, the old focus and cursor.

#include "tests/session/SessionTest.h"

namespace vorla::test {
namespace {

class Endings : public SessionTest {
 protected:
    void SetUp() override {
        SessionTest::SetUp();
        openWallpaper();
        window = open({"--geometry", "500x400+200+150"});
        driver->setFocus(window);
        EXPECT_TRUE(eventually([&] { return driver->focus() == window; }));
        cursor = driver->cursorImage();
    }

    void expectDesktopAsBefore(xcb_window_t focus) {
        driver->moveTo(3, 3);
        EXPECT_TRUE(eventually([&] { return panelsOf(host()).empty(); })) << "a panel is left";
        EXPECT_TRUE(eventually([&] { return driver->focus() == focus; }))
            << std::hex << driver->focus() << " has the keyboard and not " << focus;
        EXPECT_FALSE(driver->pointerIsGrabbed());
        EXPECT_FALSE(driver->keyboardIsGrabbed());
        EXPECT_TRUE(eventually([&] { return driver->cursorImage() == cursor; }));
    }

    xcb_window_t window = XCB_NONE;
    QImage cursor;
};

TEST_F(Endings, EveryWayOutGivesEverythingBack) {
    const auto drag = [&] { driver->drag({300, 300}, {700, 700}, 3); };
    const auto heldDrag = [&] {
        driver->moveTo(300, 300);
        driver->press();
        driver->moveTo(600, 500);
        driver->moveTo(640, 520);
    };
    const struct {
        const char* name;
        std::function<void()> end;
        const char* heard;
    } rows[] = {
        {"Esc in a drag, then release",
         [&] { heldDrag(), driver->key("Escape"), driver->release(); }, "cancelled"},
        {"right button on a window taken",
         [&] { driver->click(300, 250), driver->click(800, 800, 3); }, "cancelled"},
        {"cancelled by the host in a drag",
         [&] { heldDrag(), host().obey("cancel"), driver->release(); }, ""},
        {"delivered", [&] { drag(), driver->key("Return"); }, "finished"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_EQ(begin(), 1);
        EXPECT_NE(driver->focus(), window);
        row.end();
        if (*row.heard) {
            EXPECT_TRUE(host().hear(row.heard)) << "not " << row.heard;
        }
        EXPECT_EQ(host().heardUntilNow(), "");
        EXPECT_FALSE(host().isCapturing());
        expectDesktopAsBefore(window);
    }
}

TEST_F(Endings, EscWorksWhateverHadTheFocusBefore) {
    const xcb_window_t unmanaged =
        open({"--geometry", "200x200+900+500", "--override-redirect", "--class", "Popup"});
    const struct {
        const char* name;
        xcb_window_t focus;
    } rows[] = {{"window", window},
                {"unmanaged window", unmanaged},
                {"whatever is under the pointer", XCB_INPUT_FOCUS_POINTER_ROOT},
                {"nothing", XCB_NONE}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        driver->setFocus(row.focus);
        ASSERT_EQ(begin(), 1);
        driver->key("Escape");
        ASSERT_TRUE(host().hear("cancelled"));
        EXPECT_FALSE(host().isCapturing());
        // Else the window manager chooses.
        if (row.focus > XCB_INPUT_FOCUS_POINTER_ROOT) expectDesktopAsBefore(row.focus);
    }
}

TEST_F(Endings, AModalDialogOfTheHostDoesNotStandInTheWay) {
    HostProgram other(std::vector<std::string>{});
    ASSERT_TRUE(other.start());
    ASSERT_TRUE(other.obey("dialog"));
    const QImage screen = stillScreen();
    ASSERT_EQ(begin(other), 1);
    driver->drag({300, 300}, {700, 700}, 3);
    driver->key("Return");
    EXPECT_TRUE(samePixels(other.delivered(), screen.copy(300, 300, 400, 400)));
    ASSERT_EQ(begin(other), 1);
    driver->key("Escape");
    EXPECT_TRUE(other.hear("cancelled"));
}

TEST_F(Endings, AKilledHostLeavesTheDesktopUsable) {
    const QImage screen = stillScreen();
    for (const bool held : {false, true}) {
        SCOPED_TRACE(held ? "in a drag" : "at rest");
        ASSERT_EQ(begin(), 1);
        driver->moveTo(300, 300);
        if (held) driver->press();
        driver->moveTo(600, 500);
        host().program().terminate();
        if (held) driver->release();
        endHost();
        driver->moveTo(3, 3);
        EXPECT_TRUE(comesToShow(screen, screen.rect()));
        EXPECT_TRUE(eventually([&] { return driver->cursorImage() == cursor; }));
        EXPECT_FALSE(driver->pointerIsGrabbed());
        EXPECT_FALSE(driver->keyboardIsGrabbed());
        driver->click(400, 300);
        EXPECT_TRUE(eventually([&] { return driver->focus() == window; }));
    }
}

}  // namespace
}  // namespace vorla::test
