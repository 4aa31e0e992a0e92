#include "platform/windowserver/MemoryWindowServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vorla {
namespace {

MemoryWindowServer::Window windowAt(uint32_t number, PixelRect frame) {
    MemoryWindowServer::Window window;
    window.entry = {number, 42, 0, "Editor", {}};
    window.nativeFrame = frame;
    return window;
}

TEST(MemoryWindowServer, TellsWindowsInTheAskedDisplaysPoints) {
    MemoryWindowServer server;
    server.setDisplays({{{0, 0, 1920, 1080}, 1.0}, {{1920, 0, 3840, 2160}, 2.0}});
    server.setWindows({{windowAt(7, {1920, 0, 400, 200})}});
    EXPECT_EQ(server.windows(1)->at(0).bounds, (VLRect{1920, 880, 400, 200}));
    EXPECT_EQ(server.windows(2)->at(0).bounds, (VLRect{960, 440, 200, 100}));
    EXPECT_FALSE(server.windows(3));
    server.setWindows(std::nullopt);
    EXPECT_FALSE(server.windows(1));
    EXPECT_EQ(server.windowLists, 4);
}

TEST(MemoryWindowServer, GivesPicturesAndCountsThem) {
    MemoryWindowServer server;
    server.setDisplays({{{0, 0, 640, 480}, 2.0}});
    MemoryWindowServer::Window window = windowAt(7, {10, 20, 100, 80});
    window.shadow = 5;
    window.title = 12;
    window.alpha = 0.5;
    window.colour = 0xffff0000U;
    server.setWindows({{window}});
    const QImage part = server.imageOfDisplay(1, {10, 0, 20, 30});
    EXPECT_EQ(part.size(), QSize(40, 60));
    EXPECT_EQ(part.devicePixelRatio(), 2.0);
    EXPECT_EQ(part.pixel(0, 0), MemoryWindowServer::desktopPixel(20, 420));
    QImage desktop(640, 480, QImage::Format_RGB32);
    desktop.fill(0xff00aa00U);
    server.setDesktopImage(desktop);
    EXPECT_EQ(server.imageOfDisplay(1, {0, 0, 1, 1}).pixel(0, 0), 0xff00aa00U);

    EXPECT_EQ(server.imageOfWindow(1, 7, WindowPicture::Frame, {}).size(), QSize(100, 80));
    EXPECT_EQ(server.imageOfWindow(1, 7, WindowPicture::FrameWithShadow, {}).size(),
              QSize(110, 90));
    const QImage content = server.imageOfWindow(1, 7, WindowPicture::Content, {});
    EXPECT_EQ(content.size(), QSize(100, 68));
    EXPECT_EQ(content.pixelColor(50, 30), QColor(255, 0, 0, 128));
    EXPECT_EQ(server.alphaAtCentre(7), 0.5);
    EXPECT_EQ(server.alphaAtCentre(8), 1.0);
    EXPECT_TRUE(server.imageOfWindow(1, 8, WindowPicture::Frame, {}).isNull());
    server.setPicturesFail(true);
    EXPECT_TRUE(server.imageOfDisplay(1, {0, 0, 10, 10}).isNull());
    EXPECT_TRUE(server.imageOfWindow(1, 7, WindowPicture::Frame, {}).isNull());
    EXPECT_EQ(server.displayGrabs, 3);
    EXPECT_EQ(server.windowGrabs, 5);
}

}  // namespace
}  // namespace vorla
