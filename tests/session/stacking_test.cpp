// The frozen screen shows what was there, stays above everything, and keeps the keyboard.

#include "tests/session/SessionTest.h"

namespace vorla::test {
namespace {

class Stacking : public SessionTest {
 protected:
    void expectEscCancels() {
        // A key that comes while a thief has the keyboard goes to the thief.
        EXPECT_TRUE(eventually([&] {
            driver->key("Escape");
            return host().hear("cancelled", 200).has_value();
        }));
        EXPECT_TRUE(eventually([&] { return panelsOf(host()).empty(); }));
    }
};

TEST_F(Stacking, AnOpenMenuIsInThePictureAndDoesNotBlock) {
    openWallpaper();
    host();
    const xcb_window_t window = open({"--geometry", "400x300+500+300", "--menu"});
    driver->activate(window);
    ASSERT_TRUE(eventually([&] { return driver->pointerIsGrabbed(); })) << "no menu is open";
    const QImage screen = stillScreen();
    ASSERT_EQ(begin(), 1);
    EXPECT_TRUE(eventually([&] { return !driver->pointerIsGrabbed(); })) << "the menu stays open";
    driver->moveTo(1500, 900);
    shot("menu");
    driver->drag({450, 250}, {1000, 700}, 4);
    driver->key("Return");
    EXPECT_TRUE(samePixels(host().delivered(), screen.copy(450, 250, 550, 450)));
}

TEST_F(Stacking, PanelsCoverEveryKindOfWindow) {
    openWallpaper();
    const std::vector<std::vector<std::string>> rows = {
        {"--type", "dock", "--geometry", "1920x40+0+1040", "--class", "Dock"},
        {"--state", "above", "--geometry", "300x200+900+500", "--class", "Above"},
        {"--override-redirect", "--geometry", "200x200+1200+100", "--class", "Popup"},
        {"--state", "fullscreen", "--geometry", "400x300+0+0", "--pattern", "checker"},
    };
    for (const auto& row : rows) open(row);
    const QImage screen = stillScreen();
    ASSERT_EQ(begin(), 1);
    EXPECT_TRUE(eventually([&] { return panelsAreOnTop(host()); }));
    driver->drag({300, 200}, {1800, 1075}, 4);
    shot("over full screen");
    driver->key("Return");
    EXPECT_TRUE(samePixels(host().delivered(), screen.copy(300, 200, 1500, 875)));
}

TEST_F(Stacking, WhatLandsOnTopLaterIsCoveredAgain) {
    openWallpaper();
    const std::vector<std::string> rows[] = {
        {"--override-redirect", "--geometry", "300x200+900+500", "--class", "Popup"},
        {"--geometry", "300x200+500+500"},
        {"--state", "fullscreen", "--geometry", "400x300+0+0"},
    };
    ASSERT_EQ(begin(), 1);
    driver->drag({200, 200}, {600, 500}, 4);
    const QImage screen = stillScreen();
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row));
        openCovered(row);
        EXPECT_TRUE(eventually([&] { return panelsAreOnTop(host()); }));
        EXPECT_TRUE(comesToShow(screen, screen.rect()));
    }
    EXPECT_EQ(host().heardUntilNow(), "");
    expectEscCancels();
}

TEST_F(Stacking, AStolenKeyboardIsTakenBack) {
    openWallpaper();
    const xcb_window_t thief = open({"--geometry", "300x200+900+500"});
    ASSERT_EQ(begin(), 1);
    const xcb_window_t panel = driver->focus();
    const struct {
        const char* name;
        std::function<void()> steal;
    } rows[] = {
        {"by the window manager", [&] { driver->activate(thief); }},
        {"straight from the server", [&] { driver->setFocus(thief); }},
        {"by a new window",
         [&] {
             openCovered({"--geometry", "300x200+100+100", "--class", "New"});
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        row.steal();
        EXPECT_TRUE(eventually([&] { return driver->focus() == panel; }));
    }
    EXPECT_EQ(host().heardUntilNow(), "");
    expectEscCancels();
}

TEST_F(Stacking, AProgramThatWillNotLetGoOfTheKeyboardEndsTheSession) {
    openWallpaper();
    const xcb_window_t thief = open({"--geometry", "300x200+900+500"});
    ASSERT_EQ(begin(), 1);
    const xcb_window_t panel = driver->focus();
    bool ended = false;
    for (int i = 0; i < 40 && !ended; ++i) {
        driver->setFocus(thief);
        eventually([&] { return driver->focus() == panel; }, 300);
        ended = panelsOf(host()).empty();
    }
    EXPECT_TRUE(ended);
    EXPECT_TRUE(host().hear("cancelled"));
}

}  // namespace
}  // namespace vorla::test
