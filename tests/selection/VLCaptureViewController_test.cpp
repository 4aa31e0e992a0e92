#include "selection/VLCaptureViewController.h"

#include <cmath>

#include "tests/selection/SurfaceTest.h"

namespace {

using vorla::NotificationCenter;

class ViewController : public Surface {
 protected:
    static void finish(std::any object = {}) {
        NotificationCenter::defaultCenter().post(NotificationCaptureDidFinish, std::move(object));
    }
};

TEST_P(ViewController, DeliversExactlyTheSelectedPixels) {
    pointer_.drag({{200, 150}, {411, 263}});
    finish();
    finish(true);
    ASSERT_EQ(snapping_->finished.size(), 2U);
    const QImage& image = snapping_->finished[0].first;
    EXPECT_EQ(image, frozen({200, 137, 211, 113}));
    EXPECT_EQ(image.devicePixelRatio(), scale());
    EXPECT_FALSE(snapping_->finished[0].second);
    EXPECT_TRUE(snapping_->finished[1].second);
    EXPECT_EQ(snapping_->finished[1].first.constBits(), image.constBits());  // made once
}

TEST_P(ViewController, DeliversAClickedWindowsOwnPicture) {
    vorla::MemoryWindowServer::Window window;
    window.entry.number = 5;
    window.nativeFrame = {10, 10, int(50 * scale()), int(40 * scale())};
    window.colour = 0xff123456U;
    server_->setWindows(std::vector{window});
    const auto info = addWindow({100, 100, 50, 40});
    info->displayID = 1;
    info->windowID = 5;
    pointer_.click({120, 270});
    finish();
    ASSERT_EQ(snapping_->finished.size(), 1U);
    EXPECT_EQ(snapping_->finished[0].first.size(), QSize(50, 40) * scale());
    EXPECT_EQ(snapping_->finished[0].first.pixel(9, 9), 0xff123456U);
}

TEST_P(ViewController, DeliversTheSurfaceWhereAWindowHasNoPicture) {
    addWindow({100, 100, 50, 40});  // gone meanwhile
    pointer_.click({120, 270});
    finish();
    ASSERT_EQ(snapping_->finished.size(), 1U);
    EXPECT_EQ(snapping_->finished[0].first, frozen({100, 100, 50, 40}));
}

TEST_P(ViewController, AnEmptySelectionKeepsTheSessionUp) {
    pointer_.drag({{200, 150}, {300, 200}, {200, 150}});
    finish();
    EXPECT_TRUE(snapping_->finished.empty());
    EXPECT_EQ(log_.count("截图出现错误"), 1);
}

TEST_P(ViewController, DropsOutWhenAnotherScreenConfirms) {
    pointer_.drag({{200, 150}, {300, 200}});
    const auto other = VLCaptureViewController::create(frame_, frozen_);
    other->didConfirmSelection();
    EXPECT_FALSE(controller_->needSelectRect());
    EXPECT_TRUE(other->needSelectRect());
    EXPECT_TRUE(surface().selectedRect().isZero());
    EXPECT_TRUE(controller_->sizeInfoView()->isHidden());
    finish();
    EXPECT_TRUE(snapping_->finished.empty());
    pointer_.drag({{200, 150}, {300, 200}});
    NotificationCenter::defaultCenter().post(NotificationEditDidBegin);
    EXPECT_TRUE(surface().selectedRect().isZero());
    EXPECT_FALSE(surface().selectComfirmed());
}

TEST_P(ViewController, ClearsTheSelectionForTheRecorder) {
    pointer_.drag({{200, 150}, {300, 200}});
    NotificationCenter::defaultCenter().post(VLNotificationPrepareToRecord);
    EXPECT_FALSE(surface().needScreenCapture());
    EXPECT_TRUE(surface().selectedRect().isZero());
}

TEST_P(ViewController, IsNotMadeWithoutAPicture) {
    EXPECT_FALSE(VLCaptureViewController::create(frame_, {}));
    EXPECT_EQ(log_.count("屏幕截图不能为空"), 1);
}

/// The magnifier shows the pixel under the pointer, whether a button is down or not.
TEST_P(ViewController, MagnifierTellsThePixelUnderThePointer) {
    for (const QPoint at : {QPoint(300, 200), QPoint(1, 399), QPoint(639, 1), QPoint(320, 0)}) {
        const QString place = QStringLiteral("坐标：(%1,%2)").arg(at.x()).arg(399 - at.y());
        const QColor color(screen_.pixel(int(at.x() * scale()), int(at.y() * scale())));
        controller_ = VLCaptureViewController::create(frame_, frozen_);
        panel_->setContentView(controller_->view());
        const auto expectPixel = [&] {
            EXPECT_EQ(controller_->magifierView()->mouseInfoStr(), place);
            EXPECT_EQ(controller_->magifierView()->colorInfoStr(), "RGB:" + color.name());
        };
        pointer_.moveTo(at);
        expectPixel();
        pointer_.drag({{200, 100}, at}, expectPixel);
    }
}

INSTANTIATE_TEST_SUITE_P(Scales, ViewController, testing::Values(1.0, 2.0));

struct Placing {
    VLPoint pointer;
    VLPoint origin;
};

TEST(Magnifier, GoesToTheFirstFreePlaceBesideThePointer) {
    const vorla::test::TestResources resources;
    const VLCaptureMagnifierView view({}, {50, 60, 640, 400});
    const Placing cases[] = {
        {{320, 200}, {195, 63}},  {{640, 400}, {515, 263}}, {{125, 137}, {0, 0}},
        {{124, 200}, {139, 63}},  {{0, 0}, {15, 15}},       {{320, 136}, {335, 151}},
        {{600, 100}, {475, 115}},
    };
    for (const auto& [pointer, origin] : cases)
        EXPECT_EQ(view.adjustFrameOriginByMouseLocation(pointer), origin) << pointer.x;
    const VLCaptureMagnifierView tight({}, {0, 0, 200, 100});
    EXPECT_EQ(tight.adjustFrameOriginByMouseLocation({7, 8}), (VLPoint{7, 8}));
}

TEST(Magnifier, StandsStillOutsideOfTheScreen) {
    const vorla::test::TestResources resources;
    QImage screen(640, 400, QImage::Format_RGB32);
    screen.fill(0xff0A0b0cU);
    VLCaptureMagnifierView view(vorla::FrozenScreen(screen), {0, 0, 640, 400});
    view.setMouseLocation({0, 0});
    EXPECT_EQ(view.sourceRect(), (VLRect{-11, -9, 20.4, 16.4}));
    view.setMouseLocation({300.9, 200.9});
    const VLRect source = view.sourceRect();
    for (const VLPoint outside : {VLPoint{-0.1, 5}, VLPoint{641, 5}, VLPoint{5, 400.5}}) {
        view.setMouseLocation(outside);
        EXPECT_EQ(view.sourceRect(), source);
        EXPECT_EQ(view.mouseInfoStr(), QStringLiteral("坐标：(300,200)"));
        const VLPoint place = view.adjustFrameOriginByMouseLocation(outside);
        EXPECT_EQ(view.frame().origin(), (VLPoint{std::floor(place.x), std::floor(place.y)}));
    }
    EXPECT_EQ(view.colorInfoStr(), "RGB:#0a0b0c");
    // Beyond the picture there is the magnifier's own ground, and in the middle the cross.
    view.setMouseLocation({0, 0});
    const QImage drawn = renderViewTree(view, view.bounds(), 1.0);
    EXPECT_EQ(drawn.pixel(10, 100 - 36), 0xff303030U);
    EXPECT_EQ(drawn.pixel(100, 20), 0xff0a0b0cU);
    EXPECT_EQ(drawn.pixel(100, 122 - 77), 0xff0000ffU);
}

TEST(SizeLabel, FollowsTheSelectionInsideTheScreen) {
    const vorla::test::TestResources resources;
    VLCaptureSizeInfoView view({0, 0, 640, 400});
    struct Case {
        VLRect rect;
        VLPoint origin;
        const char* text;
    };
    const Case cases[] = {
        {{100, 100, 100.6, 200.2}, {100, 310.2}, "100 * 200"},
        {{100, 300, 50, 100}, {100, 364}, "50 * 100"},  // at the top it goes inside
        {{100, 300, 50, 90}, {100, 400}, "50 * 90"},    // the label's own edge is not looked at
        {{600, 10, 41, 20}, {550, 40}, "41 * 20"},
        {{590, 10, 50, 20}, {590, 40}, "50 * 20"},
        {{-3, -80, 20, 30}, {0, 36}, "20 * 30"},
        {{0, 0, 640, 400}, {0, 364}, "640 * 400"},
        {{}, {0, 10}, "0 * 0"},
    };
    for (const Case& c : cases) {
        view.setSelectedRect(c.rect);
        EXPECT_EQ(view.frame(), VLRect::make(c.origin, {90, 26})) << c.text;
        EXPECT_EQ(view.sizeInfoStr().toStdString(), c.text);
        EXPECT_EQ(view.isHidden(), c.rect.isZero());
    }
}

}  // namespace
