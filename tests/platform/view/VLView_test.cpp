#include "platform/view/VLView.h"

#include <gtest/gtest.h>

#include <QPainter>
#include <QTest>
#include <QWindow>

#include "platform/view/VLPanel.h"
#include "platform/view/drawing.h"
#include "tests/support/OffscreenScreens.h"
#include "tests/support/Pointer.h"

namespace {

using vorla::test::screenOfScale;

class View : public testing::TestWithParam<double> {
 protected:
    View() {
        panel_ = new VLPanel(1);
        panel_->coverScreen(screenOfScale(GetParam()));
        root_ = new VLView;
        panel_->setContentView(root_);
    }
    ~View() override {
        panel_->closePanel();
        vorla::test::runPending();
    }

    VLPanel* panel_;
    VLView* root_;
};

TEST_P(View, ConvertsPointsThroughFractionalFrames) {
    panel_->orderFrontRegardless();
    struct Case {
        VLRect outer;
        VLRect inner;
    };
    const Case cases[] = {
        {{0, 0, 300, 200}, {0, 0, 300, 200}},
        {{10, 20, 300, 200}, {5, 6, 50, 40}},
        {{10.25, 20.75, 300.5, 200.125}, {5.5, 6.25, 50.75, 40.5}},
        {{-7.3, -3.9, 300, 200}, {-1.6, 250.2, 10, 10}},  // sticking out
    };
    auto* outer = new VLView;
    auto* inner = new VLView;
    root_->addSubview(outer);
    outer->addSubview(inner);
    for (const auto& [outerFrame, innerFrame] : cases) {
        inner->setFrame(innerFrame);
        outer->setFrame(outerFrame);  // the child follows, also by parts of a point
        const VLPoint inWindow{33.5, 44.25};
        const VLPoint in = inner->convertPointFromWindow(inWindow);
        EXPECT_NEAR(in.x, inWindow.x - outerFrame.x - innerFrame.x, 1e-9);
        EXPECT_NEAR(in.y, inWindow.y - outerFrame.y - innerFrame.y, 1e-9);
        const VLPoint back = inner->convertPointToWindow(in);
        EXPECT_NEAR(back.x, inWindow.x, 1e-9);
        EXPECT_NEAR(back.y, inWindow.y, 1e-9);
    }
}

/// A press is where the middle of the pressed device pixel is.
TEST_P(View, PointerIsInTheMiddleOfADevicePixel) {
    class Recorder : public VLView {
     public:
        using VLView::VLView;
        VLPoint seen;

     protected:
        void mouseMoved(const VLMouseEvent& event) override {
            seen = convertPointFromWindow(event.locationInWindow);
        }
    };
    auto* recorder = new Recorder({10.0, 20.0, 300.0, 200.0});
    root_->addSubview(recorder);
    panel_->orderFrontRegardless();
    const double scale = GetParam();
    for (const QPoint pixel : {QPoint(40, 50), QPoint(41, 51), QPoint(299, 199)}) {
        const QPointF at = QPointF(pixel) / scale + QPointF(10, panel_->height() - 220.0);
        qt_handleMouseEvent(panel_->windowHandle(), at, panel_->mapToGlobal(at), Qt::NoButton,
                            Qt::NoButton, QEvent::MouseMove, Qt::NoModifier, 1000);
        EXPECT_EQ(recorder->seen,
                  (VLPoint{(pixel.x() + 0.5) / scale, 200.0 - (pixel.y() + 0.5) / scale}));
    }
}

INSTANTIATE_TEST_SUITE_P(Scales, View, testing::Values(1.0, 2.0));

/// Shows a picture unscaled at its lower left, as the surface does.
class PictureView : public VLView {
 public:
    PictureView(const VLRect& frame, QImage picture)
        : VLView(frame), picture_(std::move(picture)) {}

 protected:
    void drawRect(QPainter& painter, const VLRect& /*dirty*/) override {
        const QSizeF points = picture_.deviceIndependentSize();
        vorla::drawImage(painter, picture_, {0.0, 0.0, points.width(), points.height()});
    }

 private:
    QImage picture_;
};

QImage gradient(int width, int height, double scale, uint32_t tint) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, 0xff000000U | uint32_t(x * 2) << 16 | uint32_t(y * 3) << 8 | tint);
    image.setDevicePixelRatio(scale);
    return image;
}

TEST(RenderViewTree, GivesThePicturesPixelForPixel) {
    for (const double scale : {1.0, 2.0}) {
        const int px = static_cast<int>(scale);
        PictureView view({0, 0, 60, 40}, gradient(60 * px, 40 * px, scale, 9));
        view.addSubview(new PictureView({10, 5, 20, 10}, gradient(20 * px, 10 * px, scale, 200)));
        QImage whole = gradient(60 * px, 40 * px, 1.0, 9);
        QPainter(&whole).drawImage(10 * px, 25 * px, gradient(20 * px, 10 * px, 1.0, 200));
        const double part = 1.0 / scale;
        for (const VLRect& rect : {VLRect{0, 0, 60, 40}, VLRect{7, 3, 31, 22},
                                   VLRect{7 + part, 3 + part, 30 + part, 20 + part}}) {
            QImage rendered = renderViewTree(view, rect, scale);
            EXPECT_EQ(rendered.devicePixelRatio(), scale);
            rendered.setDevicePixelRatio(1.0);
            const QRect device = QRectF(rect.x * scale, (40 - rect.maxY()) * scale,
                                        rect.width * scale, rect.height * scale)
                                     .toRect();
            EXPECT_EQ(rendered.convertToFormat(QImage::Format_RGB32), whole.copy(device))
                << "scale " << scale << " at " << rect.x;
        }
        EXPECT_TRUE(renderViewTree(view, {3, 3, 0, 5}, scale).isNull());
        // Where no view draws it is clear, and nothing is there that the memory held before.
        const QImage beyond = renderViewTree(view, {50, 30, 40, 30}, scale);
        EXPECT_EQ(beyond.pixel(beyond.width() - 1, 0), 0U);
    }
}

}  // namespace
