// Hosts of other kinds, and displays that are not there.

#include <QFile>
#include <filesystem>

#include "tests/session/SessionTest.h"

namespace vorla::test {
namespace {

class Startup : public SessionTest {};

TEST_F(Startup, WithoutADisplayAStartIsRefusedAndTheHostGoesOn) {
    for (const char* display : {"DISPLAY=", "DISPLAY=:4711", "DISPLAY=nonsense"}) {
        SCOPED_TRACE(display);
        HostProgram program({"--background"},
                            {"/usr/bin/env", "QT_QPA_PLATFORM=offscreen", display});
        ASSERT_TRUE(program.start());
        for (int i = 0; i < 2; ++i) {
            program.send("capture");
            EXPECT_EQ(program.heardUntilNow(), "refused");
            EXPECT_FALSE(program.isCapturing());
        }
        EXPECT_NE(program.log().find("there is nothing to capture from"), std::string::npos);
        program.send("quit");
        EXPECT_EQ(program.program().waitForExit(20000), 0) << program.log();
    }
}

TEST_F(Startup, AHostOnAnotherMainLoopOrOnNoneNeedsNoApplicationObject) {
    openWallpaper();
    const QImage screen = stillScreen();
    const TemporaryFolder folder;
    const std::string out = folder / "out.png";
    const struct {
        std::vector<std::string> command;
        const char* word;
    } rows[] = {
        {{builtProgram("vorla-snippet-glib-host")}, "delivered "},
        {{builtProgram("vorla-snippet-plain-c"), out}, "outcome 1"},
#ifndef VORLA_SANITIZED
        {{"LD_LIBRARY_PATH=" + builtProgram("../lib"), "python3", VORLA_PYTHON_SNIPPET, out},
         "outcome 1"},
#endif
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.command.back());
        const xcb_window_t focus = driver->focus();
        TestProgram program(row.command, "/usr/bin/env");
        ASSERT_TRUE(eventually(
            [&] { return driver->focus() != focus && !samePixels(stillScreen(), screen); }, 20000));
        driver->drag({300, 200}, {700, 500}, 4);
        driver->key("Return");
        EXPECT_TRUE(program.waitForLine(row.word, nullptr, 10000));
        EXPECT_EQ(program.waitForExit(10000), 0);
        EXPECT_TRUE(comesToShow(screen, screen.rect()));
        if (row.command.back() != out) continue;
        EXPECT_TRUE(
            samePixels(QImage(QString::fromStdString(out)), screen.copy(300, 200, 400, 300)));
        std::filesystem::remove(out);
    }
}

TEST_F(Startup, AProgramMayEndWhileItsCaptureRuns) {
    openWallpaper();
    const QImage screen = stillScreen();
    const xcb_window_t focus = driver->focus();
    TestProgram program({builtProgram("vorla-snippet-glib-host")}, "/usr/bin/env");
    ASSERT_TRUE(eventually(
        [&] { return driver->focus() != focus && !samePixels(stillScreen(), screen); }, 20000));
    program.kill(SIGTERM);
    EXPECT_EQ(program.waitForExit(10000), 0);
    EXPECT_TRUE(comesToShow(screen, screen.rect()));
}

TEST_F(Startup, WithoutADisplayAnotherMainLoopGoesOnToo) {
    TestProgram program({"DISPLAY=:4711", builtProgram("vorla-snippet-glib-host")}, "/usr/bin/env");
    EXPECT_TRUE(program.waitForLine("refused", nullptr, 20000));
    EXPECT_EQ(program.waitForExit(10000), 0);
}

}  // namespace
}  // namespace vorla::test
