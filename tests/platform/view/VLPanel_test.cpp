#include "platform/view/VLPanel.h"

#include <gtest/gtest.h>

#include <QTest>
#include <QWindow>

#include "platform/view/PanelStack.h"
#include "platform/view/VLView.h"
#include "tests/support/OffscreenScreens.h"
#include "tests/support/Pointer.h"

namespace {

using vorla::test::Pointer;
using vorla::test::screenOfScale;

/// Writes down what no view of it took.
class RecordingPanel : public VLPanel {
 public:
    using VLPanel::VLPanel;
    std::vector<int> clickCounts;
    std::vector<VLPoint> rightPresses;
    std::vector<int> keys;

 protected:
    void mouseDown(const VLMouseEvent& event) override { clickCounts.push_back(event.clickCount); }
    void rightMouseDown(const VLMouseEvent& event) override {
        rightPresses.push_back(event.locationInWindow);
    }
    bool performKeyEquivalent(QKeyEvent& event) override {
        keys.push_back(event.key());
        return true;
    }
};

class Panel : public testing::TestWithParam<double> {
 protected:
    Panel() {
        panel_ = new RecordingPanel(1);
        panel_->coverScreen(screenOfScale(GetParam()));
        view_ = new VLView;
        panel_->setContentView(view_);
        view_->addSubview(new VLView({10.0, 10.0, 600.0, 380.0}));
        panel_->makeKeyAndOrderFront();
    }
    ~Panel() override {
        if (panel_) panel_->closePanel();
        vorla::test::runPending();
    }

    QPointer<RecordingPanel> panel_;
    VLView* view_ = nullptr;
};

TEST_P(Panel, GetsWhatItsViewsDoNotTake) {
    Pointer pointer(panel_);
    pointer.click({100, 100}, 3);
    EXPECT_EQ(panel_->clickCounts, std::vector<int>({1, 2, 3}));
    pointer.click({100, 50}, 1, Qt::RightButton);
    const double half = 0.5 / GetParam();
    EXPECT_EQ(panel_->rightPresses,
              std::vector<VLPoint>({{100.0 + half, panel_->height() - 50.0 - half}}));
    pointer.key(Qt::Key_Return);
    EXPECT_EQ(panel_->keys, std::vector<int>({Qt::Key_Return}));
}

/// Clicks count on while they follow each other closely, in time and in place.
TEST_P(Panel, CountsClicks) {
    struct Press {
        int time;
        QPointF at;
        Qt::MouseButton button;
        int count;
        bool drags = false;
    };
    const QPointF a(100.5, 100.5);
    const Press presses[] = {
        {90000, a, Qt::LeftButton, 1},
        {90300, a, Qt::LeftButton, 2},
        {90600, a + QPointF(3, 3), Qt::LeftButton, 3},
        {90900, a + QPointF(30, 0), Qt::LeftButton, 1},   // elsewhere
        {91900, a + QPointF(30, 0), Qt::LeftButton, 1},   // late
        {92000, a + QPointF(30, 0), Qt::RightButton, 0},  // another button breaks the series
        {92100, a + QPointF(30, 0), Qt::LeftButton, 1},
        {50, a + QPointF(30, 0), Qt::LeftButton, 1},  // a clock that ran backwards
        {60, a + QPointF(30, 0), Qt::LeftButton, 2},
        {70, a + QPointF(30, 0), Qt::LeftButton, 3, true},
        {80, a + QPointF(30, 0), Qt::LeftButton, 1, true},  // a nudge is no click
        {90, a + QPointF(30, 0), Qt::LeftButton, 1},
    };
    std::vector<int> expected;
    for (const Press& press : presses) {
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            const bool down = type == QEvent::MouseButtonPress;
            if (press.drags && !down)
                qt_handleMouseEvent(panel_->windowHandle(), press.at + QPointF(1, 0),
                                    panel_->mapToGlobal(press.at + QPointF(1, 0)), press.button,
                                    Qt::NoButton, QEvent::MouseMove, Qt::NoModifier, press.time);
            qt_handleMouseEvent(panel_->windowHandle(), press.at, panel_->mapToGlobal(press.at),
                                down ? press.button : Qt::NoButton, press.button, type,
                                Qt::NoModifier, press.time);
        }
        if (press.count > 0) expected.push_back(press.count);
    }
    EXPECT_EQ(panel_->clickCounts, expected);
}

TEST_P(Panel, CoversItsScreenAndGoesForGoodOnce) {
    EXPECT_EQ(panel_->geometry(), screenOfScale(GetParam())->geometry());
    EXPECT_EQ(view_->frame(),
              (VLRect{0.0, 0.0, double(panel_->width()), double(panel_->height())}));
    EXPECT_EQ(panel_->contentView(), view_);
    panel_->closePanel();
    panel_->closePanel();
    panel_->orderFrontRegardless();
    EXPECT_FALSE(panel_->isVisible());
    EXPECT_TRUE(vorla::test::waitUntil([this] { return !panel_; }));
}

INSTANTIATE_TEST_SUITE_P(Scales, Panel, testing::Values(1.0, 2.0));

TEST(PanelFirstPaint, IsToldOnce) {
    QPointer<VLPanel> panel(new VLPanel(1));
    int told = 0;
    panel->onFirstPaint = [&told] { ++told; };
    panel->coverScreen(screenOfScale(1.0));
    panel->orderFrontRegardless();
    EXPECT_TRUE(vorla::test::waitUntil([&told] { return told > 0; }));
    panel->repaint();
    vorla::test::runPending();
    EXPECT_EQ(told, 1);
    panel->closePanel();
    vorla::test::runPending();
}

}  // namespace
