// The sample host as a tool for scripts and for a key of the desktop.

#include <QFileInfo>

#include "tests/session/SessionTest.h"

namespace vorla::test {
namespace {

class Program : public SessionTest {
 protected:
    void SetUp() override {
        SessionTest::SetUp();
        openWallpaper();
        stillScreen();
    }

    /// Waits until the panels have the keyboard.
    bool captures(TestProgram& program) {
        const xcb_window_t before = driver->focus();
        return program.waitForLine("{\"event\":\"panels\"", nullptr, 20000) &&
               eventually([&] { return driver->focus() != before; });
    }

    TemporaryFolder folder;
};

TEST_F(Program, TheExitStatusSaysWhatCameOfTheCapture) {
    const auto drag = [&] { driver->drag({300, 300}, {700, 700}, 3); };
    const auto deliver = [&](TestProgram& /*program*/) { drag(), driver->key("Return"); };
    // The dialog comes up when it likes: what has the keyboard until then cares for no Esc.
    const auto closeSaveDialog = [&](TestProgram& program) {
        const xcb_window_t panel = driver->focus();
        drag();
        driver->click(592, 730);
        EXPECT_TRUE(eventually([&] { return driver->focus() != panel; }));
        EXPECT_TRUE(eventually([&] {
            driver->key("Escape");
            return program.hasEnded();
        }));
    };
    const std::string picture = folder / "picture.bmp";
    const struct {
        const char* name;
        std::vector<std::string> arguments;
        std::function<void(TestProgram&)> act;
        int status;
    } rows[] = {
        {"delivered", {"--out", picture}, deliver, 0},
        {"cancelled",
         {"--delay", "0.1"},
         [&](TestProgram& /*program*/) { driver->key("Escape"); },
         1},
        {"save dialog closed", {}, closeSaveDialog, 1},
        {"two wishes", {"--capture"}, {}, 2},
        {"endless delay", {"--delay", "inf"}, {}, 2},
        {"no place to write", {"--out", folder / "missing/picture.png"}, deliver, 4},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<std::string> arguments = {"--once", "--state-dir", folder.path()};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        TestProgram program(arguments, builtProgram("vorla-host"), folder / "log");
        if (row.act) {
            ASSERT_TRUE(captures(program));
            row.act(program);
        }
        EXPECT_EQ(program.waitForExit(20000), row.status);
    }
    EXPECT_EQ(QImage(QString::fromStdString(picture), "BMP").size(), QSize(400, 400));
    TestProgram blind({"DISPLAY=:4711", builtProgram("vorla-host"), "--once"}, "/usr/bin/env",
                      folder / "log");
    EXPECT_EQ(blind.waitForExit(20000), 3);
}

TEST_F(Program, ALaterStartLeavesItsWishToTheFirst) {
    const auto start = [&](std::vector<std::string> more) {
        more.insert(more.end(), {"--state-dir", folder.path()});
        return TestProgram(more, builtProgram("vorla-host"), folder / "log");
    };
    TestProgram first = start({});
    ASSERT_TRUE(first.waitForLine("{\"event\":\"ready\"", nullptr, 20000));
    EXPECT_EQ(start({"--capture"}).waitForExit(20000), 0);
    ASSERT_TRUE(captures(first));
    driver->key("Escape");
    EXPECT_TRUE(first.waitForLine("{\"event\":\"cancelled\""));
    first.suspend();
    EXPECT_EQ(start({}).waitForExit(20000), 3);
    first.resume();
}

}  // namespace
}  // namespace vorla::test
