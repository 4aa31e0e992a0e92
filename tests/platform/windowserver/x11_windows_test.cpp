#include <unistd.h>

#include <QWidget>

#include "platform/base/Bundle.h"
#include "tests/platform/windowserver/X11TestFixture.h"

namespace vorla::test {
namespace {

using testing::ElementsAre;

class X11Windows : public X11Test {};

TEST_F(X11Windows, LayersFollowTypeAndState) {
    struct Row {
        const char* name;
        std::vector<std::string> arguments;
        int layer;
    };
    const std::vector<Row> rows = {
        {"normal", {}, 0},
        {"above", {"--state", "above"}, 3},
        {"below", {"--state", "below"}, -1},
        {"dock", {"--type", "dock"}, 20},
        {"desktop", {"--type", "desktop"}, -20},
        {"unmanaged", {"--override-redirect"}, 101},
        {"unmanaged dock", {"--override-redirect", "--type", "dock"}, 20},
        {"full screen", {"--state", "fullscreen"}, 24},
    };
    int x = 50;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string place = "150x100+" + std::to_string(x) + "+60";
        x += 200;
        std::vector<std::string> arguments = row.arguments;
        arguments.insert(arguments.end(), {"--class", "Layered", "--geometry", place});
        const xcb_window_t window = open(arguments);
        const auto found = entry(window);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->layer, row.layer);
        EXPECT_EQ(found->ownerName, "Layered");
        EXPECT_EQ(found->pid, programs.back().pid());
    }
}

TEST_F(X11Windows, BoundsAreVisibleFrames) {
    const Display d = display();
    const xcb_window_t decorated = open({"--geometry", "301x203+400+300"});
    ASSERT_TRUE(eventually(
        [&] { return driver->propertyWords(decorated, "_NET_FRAME_EXTENTS").size() == 4; }));
    const auto extents = driver->propertyWords(decorated, "_NET_FRAME_EXTENTS");
    const QRect frame = driver->contentRect(decorated).adjusted(
        -static_cast<int>(extents[0]), -static_cast<int>(extents[2]), static_cast<int>(extents[1]),
        static_cast<int>(extents[3]));
    ASSERT_GT(frame.height(), 203) << "the window manager has put a title on it";
    EXPECT_EQ(entry(decorated)->bounds, points(frame, d));

    const xcb_window_t menu = open({"--geometry", "120x90+7+11", "--override-redirect"});
    EXPECT_EQ(entry(menu)->bounds, points({7, 11, 120, 90}, d));

    // A client that draws its own shadow: 10, 12, 14, 16 pixels at its edges are not seen.
    const xcb_window_t own = open({"--geometry", "220x180+30+40", "--override-redirect",
                                   "--gtk-frame-extents", "10,12,14,16"});
    EXPECT_EQ(entry(own)->bounds, points({40, 54, 198, 150}, d));

    const xcb_window_t partlyOff = open({"--geometry", "200x100-150+500", "--override-redirect"});
    EXPECT_EQ(entry(partlyOff)->bounds, points({-150, 500, 200, 100}, d));
}

TEST_F(X11Windows, ListedFrontToBackWithUnmanagedOnes) {
    const xcb_window_t back = open({"--geometry", "300x200+100+100"});
    const xcb_window_t front = open({"--geometry", "300x200+150+150"});
    const xcb_window_t menu = open({"--geometry", "80x60+160+160", "--override-redirect"});
    const auto order = [&] {
        std::vector<uint32_t> numbers;
        const auto list = server->windows(display().displayID);
        for (const ServerWindow& w : list.value()) numbers.push_back(w.number);
        return numbers;
    };
    EXPECT_THAT(order(), ElementsAre(menu, front, back));
    driver->activate(back);
    EXPECT_TRUE(eventually([&] { return order() == std::vector<uint32_t>{menu, back, front}; }));
}

TEST_F(X11Windows, OnlyWhatIsOnTheScreenIsListed) {
    const xcb_window_t minimised = open({"--geometry", "300x200+100+100"});
    const xcb_window_t elsewhere = open({"--geometry", "300x200+150+150"});
    const xcb_window_t unmapped = open({"--geometry", "80x60+160+160", "--override-redirect"});
    const xcb_window_t tiny = open({"--geometry", "1x1+10+10", "--override-redirect"});
    const xcb_window_t off = open({"--geometry", "200x100+50+50", "--override-redirect"});
    const xcb_window_t stays = open({"--geometry", "80x60+500+160", "--override-redirect"});
    driver->moveWindow(off, -200, 50);
    driver->minimise(minimised);
    driver->sendToManager(elsewhere, "_NET_WM_DESKTOP", 1, 2);
    driver->unmap(unmapped);
    EXPECT_TRUE(eventually([&] { return !entry(minimised) && !entry(elsewhere); }));
    EXPECT_FALSE(entry(unmapped));
    EXPECT_FALSE(entry(tiny));
    EXPECT_FALSE(entry(off));
    EXPECT_TRUE(entry(stays));
    driver->switchWorkspace(1);
    EXPECT_TRUE(eventually([&] { return entry(elsewhere).has_value(); }));
    EXPECT_FALSE(entry(minimised));
    EXPECT_TRUE(entry(stays)) << "unmanaged windows are on every workspace";
    driver->switchWorkspace(0);
    EXPECT_TRUE(eventually([&] { return !entry(elsewhere); }));
}

TEST_F(X11Windows, OwnPanelsCarryTheHostsName) {
    HostIdentity::setDisplayName("The Host");
    QWidget panel(nullptr, Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    panel.setGeometry(20, 30, 200, 100);
    panel.show();
    ASSERT_TRUE(eventually([&] { return entry(panel.winId()).has_value(); }));
    const ServerWindow own = *entry(panel.winId());
    EXPECT_EQ(own.ownerName, "The Host");
    EXPECT_EQ(own.pid, getpid());
    EXPECT_GT(own.layer, 25);
}

TEST_F(X11Windows, ListSurvivesVanishingWindows) {
    const xcb_window_t stays = open({"--geometry", "80x60+500+160", "--override-redirect"});
    for (int i = 0; i < 12; ++i) {
        TestProgram a({"--geometry", "300x200+100+100"});
        TestProgram b({"--geometry", "90x70+300+100", "--override-redirect"});
        a.waitUntilReady();
        // The windows go while the list is being read, at no moment in particular.
        a.terminate();
        b.terminate();
        for (int j = 0; j < 5; ++j) ASSERT_TRUE(entry(stays));
    }
}

TEST_F(X11Windows, ActiveApplicationIsTheManagersChoice) {
    const xcb_window_t first = open({"--class", "First", "--geometry", "300x200+100+100"});
    open({"--class", "Second", "--geometry", "300x200+500+100"});
    EXPECT_TRUE(eventually([&] { return server->activeApplicationName() == "Second"; }));
    driver->activate(first);
    EXPECT_TRUE(eventually([&] { return server->activeApplicationName() == "First"; }));
    EXPECT_EQ(server->activeApplicationName(), entry(first)->ownerName);
    programs.clear();
    EXPECT_TRUE(eventually([&] { return server->activeApplicationName().empty(); }));
    // Nobody manages this one, but it has the keyboard.
    const xcb_window_t unmanaged = open({"--class", "Third", "--override-redirect"});
    driver->setFocus(unmanaged);
    EXPECT_TRUE(eventually([&] { return server->activeApplicationName() == "Third"; }));
}

}  // namespace
}  // namespace vorla::test
