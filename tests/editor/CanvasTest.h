#pragma once

#include <gtest/gtest.h>

#include <QPainter>
#include <QTest>
#include <memory>

#include "editor/VLEditViewController.h"
#include "platform/view/VLPanel.h"
#include "settings/StatisticDoor.h"
#include "tests/editor/items/ItemPainting.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OffscreenScreens.h"
#include "tests/support/Pointer.h"
#include "tests/support/TestPattern.h"
#include "tests/support/TestResources.h"

/// A canvas of 600 x 360 points, 20 from the upper left corner of a panel, over a picture whose
/// every pixel differs from its neighbours. The parameter is the screen's scale. Points of the
/// canvas are y-up.
class Canvas : public testing::TestWithParam<double> {
 protected:
    Canvas() {
        panel_ = new VLPanel(27);
        panel_->coverScreen(vorla::test::screenOfScale(scale()));
        const VLRect all = panel_->bounds();
        content_ = new VLView(all);
        panel_->setContentView(content_);
        controller_ =
            std::make_unique<VLEditViewController>(VLRect{20, all.height - 380, 600, 360});
        content_->addSubview(controller_->view());
        picture_ = QImage(QSize(600, 360) * scale(), QImage::Format_RGB32);
        for (int y = 0; y < picture_.height(); ++y)
            for (int x = 0; x < picture_.width(); ++x)
                picture_.setPixel(
                    x, y,
                    0xff000000U | vorla::test::testPatternPixel(vorla::test::TestPattern::Gradient,
                                                                x, y, 0, 0));
        picture_.setDevicePixelRatio(scale());
        controller_->setBackgroundImage(picture_);
        panel_->makeKeyAndOrderFront();
        vorla::test::runPending();
        pointer_ = vorla::test::Pointer(panel_);
        view().setNormalStrokeColor(Qt::red);
        view().setNormalStrokeWidth(4);
        vorla::setStatisticReceiver([this](int event) { events_.push_back(event); });
    }
    ~Canvas() override {
        vorla::setStatisticReceiver({});
        controller_.reset();
        panel_->closePanel();
        vorla::test::runPending();
    }

    [[nodiscard]] double scale() const { return GetParam(); }
    [[nodiscard]] VLEditView& view() const { return *controller_->editView(); }
    [[nodiscard]] static QPoint onPanel(VLPoint p) {
        return {20 + static_cast<int>(p.x), 380 - static_cast<int>(p.y)};
    }
    void drag(const std::vector<VLPoint>& path) {
        std::vector<QPoint> points;
        for (const VLPoint& p : path) points.push_back(onPanel(p));
        pointer_.drag(points);
    }
    void click(VLPoint at, int times = 1) { pointer_.click(onPanel(at), times); }
    std::shared_ptr<VLEditItem> draw(VLEditGraphType type, const std::vector<VLPoint>& path) {
        view().setGraphType(type);
        drag(path);
        return view().itemArray().empty() ? nullptr : view().itemArray().back();
    }
    /// That the screen shows the canvas like this. What is compared is what was drawn bit by bit;
    /// the screens here keep no more than one pixel a point of it.
    void expectShown(const QImage& expected, int tolerance = 0) const {
        vorla::test::runPending();
        if (scale() != 1.0) return;
        QImage image = panel_->screen()->grabWindow(panel_->winId()).toImage();
        image.convertTo(QImage::Format_RGB32);
        const QImage canvas = image.copy(QRect(QPoint(20, 20), picture_.size()));
        EXPECT_LE(vorla::test::largestDifference(canvas, expected), tolerance);
    }
    [[nodiscard]] QImage delivered() const {
        QImage image = controller_->imageEdited();
        image.setDevicePixelRatio(1.0);
        return image;
    }
    /// The picture with all items drawn anew on it: what canvas and result should look
    /// like but for the rounding of a blend.
    [[nodiscard]] QImage drawnAnew() const {
        QImage mosaics(picture_.size(), QImage::Format_ARGB32_Premultiplied);
        mosaics.fill(Qt::transparent);
        QImage others = mosaics;
        const auto draw = [this](QImage& layer, VLEditItem& item) {
            QPainter painter(&layer);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.scale(scale(), -scale());
            painter.translate(0, -360);
            item.drawGraph(painter, {0, 0, 600, 360});
        };
        std::vector<VLEditItem*> newestFirst;
        for (const auto& item : view().itemArray()) {
            if (item->graphType() == VLEditGraphTypeMosaicPen)
                newestFirst.push_back(item.get());
            else
                draw(others, *item);
        }
        for (auto item = newestFirst.rbegin(); item != newestFirst.rend(); ++item)
            draw(mosaics, **item);
        QImage all = picture_.copy();
        all.setDevicePixelRatio(1.0);
        QPainter painter(&all);
        painter.drawImage(0, 0, mosaics);
        painter.drawImage(0, 0, others);
        return all;
    }
    void expectDrawnAnew(const QImage& result, int tolerance = 1) const {
        EXPECT_LE(vorla::test::largestDifference(result, drawnAnew()), tolerance);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(panel_->windowHandle(), key, modifiers);
    }

    vorla::test::LogRecorder log_;
    vorla::test::TestResources resources_;
    VLPanel* panel_ = nullptr;
    VLView* content_ = nullptr;
    std::unique_ptr<VLEditViewController> controller_;
    QImage picture_;
    std::vector<int> events_;
    vorla::test::Pointer pointer_{nullptr};
};
