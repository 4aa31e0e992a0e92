#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <memory>

#include <vorla/VLCapture.h>
#include <vorla/VLCaptureSetting.h>
#include "NEX/NEX/OzuNexManager.h"
#include "capture/VLCaptureManager.h"
#include "platform/windowserver/MemoryWindowServer.h"
#include "settings/StatisticDoor.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OffscreenScreens.h"
#include "tests/support/Pointer.h"
#include "tests/support/TestResources.h"

/// A host: writes down what it hears.
class Host : public VLCaptureRequestDelegate {
 public:
    struct Delivery {
        QImage image;
        std::optional<std::string> path;
    };
    int cancelled = 0;
    std::vector<Delivery> delivered;

    void captureRequestDidCancel(VLCaptureRequest& /*request*/) override { ++cancelled; }
    void captureRequest(VLCaptureRequest& /*request*/, std::span<const std::byte> imageData,
                        const std::optional<std::string>& saveToPath,
                        const std::optional<std::string>& error) override {
        EXPECT_FALSE(error);
        delivered.push_back({QImage::fromData(reinterpret_cast<const uchar*>(imageData.data()),
                                              int(imageData.size()), "PNG"),
                             saveToPath});
    }
};

/// Sessions of a host on scripted screens.
class Session : public testing::Test {
 protected:
    using ServerWindow = vorla::MemoryWindowServer::Window;

    Session() {
        vorla::WindowServer::setShared(server_);
        server_->setDisplays({vorla::test::firstScreen});
        // Started once for the process, the statistics would take the receiver's place later.
        OzuNexManager::defaultManager().startStat();
        vorla::setStatisticReceiver([this](int event) { events_.push_back(event); });
        request_->setDelegate(host_);
        VLCaptureSetting::sharedInstance().setPlaySound(false);
    }
    ~Session() override {
        VLCancelCapture();
        vorla::test::runPending();
        vorla::setStatisticReceiver({});
        vorla::WindowServer::setShared(nullptr);
    }

    static ServerWindow serverWindow(uint32_t number, vorla::PixelRect place, int32_t layer = 0,
                                     const char* owner = "editor") {
        ServerWindow window;
        window.entry.number = number;
        window.entry.layer = layer;
        window.entry.ownerName = owner;
        window.nativeFrame = place;
        window.colour = 0xff000000U + number;
        return window;
    }
    static auto controllers() { return VLCaptureManager::sharedInstance()->windowControllers(); }
    /// Starts, and waits until all panels are up.
    void start() {
        ASSERT_TRUE(VLStartCapture(request_));
        const size_t screens = server_->displays().size();
        ASSERT_TRUE(vorla::test::waitUntil([=] { return controllers().size() == screens; }));
        vorla::test::runPending();
        events_.clear();
    }
    static VLCaptureWindow* panel(size_t screen = 0) { return controllers().at(screen)->window(); }
    static vorla::test::Pointer pointer(size_t screen = 0) {
        return vorla::test::Pointer(panel(screen));
    }
    static VLCaptureView& surface(size_t screen = 0) {
        return *controllers().at(screen)->captureViewController()->captureView();
    }
    /// That everything of the session is over.
    void expectOver() {
        EXPECT_FALSE(VLIsCapturing());
        EXPECT_TRUE(controllers().empty());
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        EXPECT_FALSE(server_->isKeeping);
        for (const QWidget* widget : QApplication::topLevelWidgets())
            EXPECT_FALSE(widget->isVisible());
    }

    vorla::test::LogRecorder log_;
    vorla::test::TestResources resources_;
    std::shared_ptr<vorla::MemoryWindowServer> server_ =
        std::make_shared<vorla::MemoryWindowServer>();
    std::shared_ptr<Host> host_ = std::make_shared<Host>();
    std::shared_ptr<VLCaptureRequest> request_ = std::make_shared<VLCaptureRequest>();
    std::vector<int> events_;
};
