#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "platform/view/VLPanel.h"
#include "platform/windowserver/MemoryWindowServer.h"
#include "selection/VLCaptureViewController.h"
#include "settings/StatisticDoor.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OffscreenScreens.h"
#include "tests/support/Pointer.h"
#include "tests/support/TestResources.h"
#include "windows/VLCaptureWindowInfo.h"

/// Provides the windows to snap to and takes the finished picture.
class Snapping : public VLCaptureViewControllerDelegate {
 public:
    std::vector<std::shared_ptr<VLCaptureWindowInfo>> windows;
    std::vector<std::pair<QImage, bool>> finished;

    void captureDidFinishWithImage(const QImage& image, bool needSave) override {
        finished.emplace_back(image, needSave);
    }
    std::shared_ptr<VLCaptureWindowInfo> windowInfoAtPostion(VLPoint point) override {
        for (const auto& info : windows)
            if (info->windowFrame.containsPoint(point)) return info;
        return nullptr;
    }
};

/// A surface of 640 x 400 points on a panel, without a session around it. The parameter is the
/// screen's scale.
class Surface : public testing::TestWithParam<double> {
 protected:
    static constexpr VLRect frame_{0, 0, 640, 400};

    Surface() {
        vorla::WindowServer::setShared(server_);
        server_->setDisplays({{{0, 0, int(640 * scale()), int(400 * scale())}, scale()}});
        VLCaptureThemeManager::sharedInstance().changeThemeTo("default");
        vorla::setStatisticReceiver([this](int event) { events_.push_back(event); });
        screen_ = server_->imageOfDisplay(1, frame_);
        frozen_ = vorla::FrozenScreen(screen_);
        controller_ = VLCaptureViewController::create(frame_, frozen_);
        controller_->setDelegate(snapping_);
        panel_ = new VLPanel(27);
        panel_->setScreen(vorla::test::screenOfScale(scale()));
        const QPoint corner = vorla::test::screenOfScale(scale())->geometry().topLeft();
        panel_->setGeometry(corner.x(), corner.y(), 640, 400);
        panel_->setContentView(controller_->view());
        panel_->makeKeyAndOrderFront();
        vorla::test::runPending();
    }
    ~Surface() override {
        controller_.reset();
        panel_->closePanel();
        vorla::test::runPending();
        vorla::setStatisticReceiver({});
        vorla::WindowServer::setShared(nullptr);
    }

    [[nodiscard]] double scale() const { return GetParam(); }
    [[nodiscard]] VLCaptureView& surface() const { return *controller_->captureView(); }
    std::shared_ptr<VLCaptureWindowInfo> addWindow(const VLRect& place) {
        auto info = std::make_shared<VLCaptureWindowInfo>();
        info->windowFrame = place;
        snapping_->windows.push_back(info);
        return info;
    }
    /// What the screen shows of the panel: what was drawn, not what would be.
    [[nodiscard]] QImage shown() const {
        vorla::test::runPending();
        QImage image = panel_->screen()->grabWindow(panel_->winId()).toImage();
        image.convertTo(QImage::Format_RGB32);
        image.setDevicePixelRatio(1.0);
        return image;
    }
    /// The frozen pixels of a rectangle.
    [[nodiscard]] QImage frozen(const VLRect& r) const {
        return screen_.copy(
            QRectF(r.x * scale(), (400 - r.maxY()) * scale(), r.width * scale(), r.height * scale())
                .toRect());
    }

    vorla::test::LogRecorder log_;
    vorla::test::TestResources resources_;
    std::shared_ptr<vorla::MemoryWindowServer> server_ =
        std::make_shared<vorla::MemoryWindowServer>();
    std::shared_ptr<Snapping> snapping_ = std::make_shared<Snapping>();
    std::vector<int> events_;
    QImage screen_;
    vorla::FrozenScreen frozen_;
    std::shared_ptr<VLCaptureViewController> controller_;
    VLPanel* panel_ = nullptr;
    vorla::test::Pointer pointer_{nullptr};

    void SetUp() override { pointer_ = vorla::test::Pointer(panel_); }
};
