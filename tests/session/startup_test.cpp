// Hosts of other kinds, and displays that are not there.

#include <QFile>

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

TEST_F(Startup, AHostOnAnotherMainLoopNeedsNoApplicationObject) {
    openWallpaper();
    const QImage screen = stillScreen();
    TestProgram program({}, builtProgram("vorla-snippet-glib-host"));
    ASSERT_TRUE(program.waitForLine("started", nullptr, 20000));
    ASSERT_TRUE(eventually([&] {
        return driver->focus() != XCB_INPUT_FOCUS_POINTER_ROOT &&
               !samePixels(stillScreen(), screen);
    }));
    driver->drag({300, 200}, {700, 500}, 4);
    driver->key("Return");
    std::string bytes;
    ASSERT_TRUE(program.waitForLine("delivered ", &bytes, 10000));
    EXPECT_GT(std::stoi(bytes), 1000);
    EXPECT_EQ(program.waitForExit(10000), 0);
}

TEST_F(Startup, WithoutADisplayAnotherMainLoopGoesOnToo) {
    TestProgram program({"DISPLAY=:4711", builtProgram("vorla-snippet-glib-host")}, "/usr/bin/env");
    EXPECT_TRUE(program.waitForLine("refused", nullptr, 20000));
    EXPECT_EQ(program.waitForExit(10000), 0);
}

}  // namespace
}  // namespace vorla::test
