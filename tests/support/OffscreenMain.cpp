// Main of the test programs that show windows without a display: three screens of different scale
// and place (see OffscreenScreens.h), settings in a folder of their own.

#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>
#include <fstream>

#include "platform/view/Application.h"
#include "tests/support/TemporaryFolder.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    const vorla::test::TemporaryFolder folder;
    const std::string screens = folder / "screens.json";
    std::ofstream(screens) << R"({"synchronousWindowSystemEvents":false,"windowFrameMargins":false,
        "screens":[
        {"name":"first","x":0,"y":0,"width":1280,"height":800,"logicalDpi":96,
         "logicalBaseDpi":96,"dpr":1},
        {"name":"dense","x":1280,"y":0,"width":640,"height":400,"logicalDpi":96,
         "logicalBaseDpi":96,"dpr":2},
        {"name":"negative","x":-640,"y":-100,"width":640,"height":480,"logicalDpi":96,
         "logicalBaseDpi":96,"dpr":1}]})";
    ::setenv("QT_QPA_PLATFORM", ("offscreen:configfile=" + screens).c_str(), 1);
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        ::setenv(variable, folder.path().c_str(), 1);
    ::setenv("LC_ALL", "C.UTF-8", 1);
    QApplication application(argc, argv);
    QGuiApplication::setApplicationDisplayName(QStringLiteral("test host"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return vorla::attachToApplication() ? RUN_ALL_TESTS() : EXIT_FAILURE;
}
