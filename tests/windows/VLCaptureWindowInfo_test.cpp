#include "windows/VLCaptureWindowInfo.h"

#include <gtest/gtest.h>

#include "platform/windowserver/MemoryWindowServer.h"

namespace {

using vorla::MemoryWindowServer;
using vorla::WindowServer;

class WindowRecord : public testing::Test {
 protected:
    WindowRecord() {
        server_->setDisplays({{{0, 0, 200, 100}, 1.0}});
        setAlpha(1.0);
        WindowServer::setShared(server_);
        info_.displayID = 1;
        info_.windowID = 7;
        info_.windowFrame = {10, 20, 40, 30};
    }
    ~WindowRecord() override { WindowServer::setShared(nullptr); }

    void setAlpha(double alpha) {
        MemoryWindowServer::Window window;
        window.entry.number = 7;
        window.nativeFrame = {10, 50, 40, 30};
        window.shadow = 5;
        window.alpha = alpha;
        server_->setWindows(std::vector{window});
    }

    std::shared_ptr<MemoryWindowServer> server_ = std::make_shared<MemoryWindowServer>();
    VLCaptureWindowInfo info_;
};

TEST_F(WindowRecord, MakesEachPictureOnce) {
    EXPECT_EQ(info_.windowImage().size(), QSize(40, 30));
    EXPECT_EQ(info_.windowImageWithShadow().size(), QSize(50, 40));
    const int grabs = server_->windowGrabs;
    EXPECT_FALSE(info_.windowImage().isNull());
    EXPECT_FALSE(info_.windowImageWithShadow().isNull());
    EXPECT_EQ(server_->windowGrabs, grabs);
}

TEST_F(WindowRecord, AsksForTransparencyUntilThereIsAPicture) {
    setAlpha(0.0);
    EXPECT_TRUE(info_.isTransparent());
    setAlpha(1.0);
    EXPECT_FALSE(info_.isTransparent());
    EXPECT_EQ(server_->windowGrabs, 0);
    EXPECT_FALSE(info_.windowImage().isNull());
    setAlpha(0.0);
    EXPECT_FALSE(info_.isTransparent());
}

TEST_F(WindowRecord, ThePictureTellsTheTransparencyWhicheverWasAskedFor) {
    setAlpha(0.0);
    EXPECT_FALSE(info_.windowImageWithShadow().isNull());
    EXPECT_TRUE(info_.isTransparent());
}

TEST_F(WindowRecord, CutsTheKeyWindowOutOfTheFrozenScreen) {
    info_.frozenScreen = server_->imageOfDisplay(1, {0, 0, 200, 100});
    setAlpha(0.0);
    const QImage picture = info_.windowImageIsKeyWindow(true);
    EXPECT_EQ(picture, info_.frozenScreen.copy(10, 50, 40, 30));
    EXPECT_EQ(server_->windowGrabs, 0);
    EXPECT_EQ(info_.windowImage(), picture);
    EXPECT_FALSE(info_.isTransparent());
}

TEST_F(WindowRecord, HasNoPictureForTheDesktopOrAWindowThatWent) {
    const auto desktop = VLCaptureWindowInfo::desktopInfo({200, 100}, 2.0);
    EXPECT_EQ(desktop->name, "Desktop");
    EXPECT_EQ(desktop->windowFrame, (VLRect{0, 0, 200, 100}));
    EXPECT_EQ(desktop->displayID, 0U);
    for (const bool isKey : {false, true})
        EXPECT_TRUE(desktop->windowImageIsKeyWindow(isKey).isNull());
    EXPECT_TRUE(desktop->windowImageWithShadow().isNull());
    EXPECT_FALSE(desktop->isTransparent());
    EXPECT_EQ(server_->windowGrabs + server_->alphaReads, 0);

    server_->setWindows(std::nullopt);
    EXPECT_TRUE(info_.windowImage().isNull());
    EXPECT_TRUE(info_.windowImageWithShadow().isNull());
    EXPECT_FALSE(info_.isTransparent());
    // A picture that was made before is not lost.
    setAlpha(1.0);
    EXPECT_FALSE(info_.windowImage().isNull());
    server_->setWindows(std::nullopt);
    EXPECT_TRUE(info_.windowImageWithShadow().isNull());
    EXPECT_FALSE(info_.windowImage().isNull());
}

}  // namespace
