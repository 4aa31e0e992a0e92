#include "platform/view/VLEventTracker.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <QWindow>
#include <chrono>

#include "platform/view/VLPanel.h"
#include "platform/view/VLView.h"
#include "tests/support/OffscreenScreens.h"
#include "tests/support/Pointer.h"

namespace {

using namespace std::chrono_literals;
using Flow = VLEventTracker::Flow;
using Words = std::vector<std::string>;

constexpr unsigned wholeDrag = VLEventTracker::LeftMouseDragged | VLEventTracker::LeftMouseUp;

/// Tracks from each press, and writes down all that it hears.
class TrackingView : public VLView {
 public:
    using VLView::VLView;

    unsigned mask = wholeDrag;
    std::chrono::milliseconds timeout = 5s;
    Words heard;
    bool result = false;
    std::function<void()> atDrag;

 protected:
    void mouseDown(const VLMouseEvent& /*event*/) override {
        heard.emplace_back("press");
        result = VLEventTracker::trackEventsMatchingMask(
            *this, mask, timeout, [this](const VLMouseEvent* event) { return handle(event); });
        heard.emplace_back("end");
    }
    void mouseUp(const VLMouseEvent& /*event*/) override { heard.emplace_back("plain up"); }
    void rightMouseDown(const VLMouseEvent& /*event*/) override { heard.emplace_back("right"); }
    void wheelEvent(QWheelEvent* /*event*/) override { heard.emplace_back("wheel"); }
    void keyPressEvent(QKeyEvent* event) override {
        heard.push_back("key " + event->text().toStdString());
    }

 private:
    Flow handle(const VLMouseEvent* event) {
        if (!event) {
            heard.emplace_back("silence");
            return Flow::Stop;
        }
        if (event->type == VLMouseEvent::Type::LeftMouseUp) {
            heard.emplace_back("up");
            return Flow::Stop;
        }
        heard.emplace_back("drag");
        if (atDrag) std::exchange(atDrag, {})();
        return Flow::Continue;
    }
};

class EventTracker : public testing::Test {
 protected:
    EventTracker() {
        panel_ = new VLPanel(1);
        pointer_ = vorla::test::Pointer(panel_);
        panel_->coverScreen(vorla::test::screenOfScale(1.0));
        view_ = new TrackingView;
        view_->setFocusPolicy(Qt::StrongFocus);
        panel_->setContentView(view_);
        panel_->makeKeyAndOrderFront();
        view_->setFocus();
        EXPECT_TRUE(vorla::test::waitUntil([this] { return view_->hasFocus(); }));
    }
    ~EventTracker() override {
        if (panel_) panel_->closePanel();
        vorla::test::runPending();
    }

    QPointer<VLPanel> panel_;
    QPointer<TrackingView> view_;
    vorla::test::Pointer pointer_{nullptr};
};

TEST_F(EventTracker, HoldsOtherInputBackAndDeliversItInOrderAfterwards) {
    pointer_.drag({{50, 50}, {60, 60}, {70, 70}}, [this] {
        QWindow* window = panel_->windowHandle();
        QTest::keyClick(window, Qt::Key_A);
        QTest::mousePress(window, Qt::RightButton, {}, {70, 70});
        QTest::mouseRelease(window, Qt::RightButton, {}, {70, 70});
        QWheelEvent wheel({60, 60}, {60, 60}, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(window, &wheel);
        QTest::keyClick(window, Qt::Key_B);
        EXPECT_EQ(view_->heard, Words({"press", "drag", "drag"}));
    });
    EXPECT_TRUE(view_->result);
    EXPECT_EQ(view_->heard,
              Words({"press", "drag", "drag", "up", "end", "key a", "right", "wheel", "key b"}));
}

TEST_F(EventTracker, EndsAfterSilenceAndLeavesTheReleaseAlone) {
    view_->timeout = 60ms;
    QTimer::singleShot(0, [this] { pointer_.moveTo({60, 60}); });
    QTest::mousePress(panel_->windowHandle(), Qt::LeftButton, {}, {50, 50});
    QTest::mouseRelease(panel_->windowHandle(), Qt::LeftButton, {}, {60, 60});
    EXPECT_EQ(view_->heard, Words({"press", "drag", "silence", "end", "plain up"}));
    EXPECT_TRUE(view_->result);
}

TEST_F(EventTracker, DeliversOnlyWhatTheMaskAsksFor) {
    view_->mask = VLEventTracker::LeftMouseUp;
    pointer_.drag({{50, 50}, {60, 60}});
    EXPECT_EQ(view_->heard, Words({"press", "up", "end"}));
}

TEST_F(EventTracker, ASecondDragDoesNotBeginInsideTheFirst) {
    bool inner = true;
    view_->atDrag = [this, &inner] {
        inner = VLEventTracker::trackEventsMatchingMask(*view_, wholeDrag, 5s,
                                                        [](const auto*) { return Flow::Stop; });
    };
    pointer_.drag({{50, 50}, {60, 60}, {70, 70}});
    EXPECT_FALSE(inner);
    EXPECT_EQ(view_->heard, Words({"press", "drag", "drag", "up", "end"}));
}

TEST_F(EventTracker, EndsWhenThePanelGoesAndKeepsItsViewsUntilThen) {
    int idleTasks = 0;
    view_->atDrag = [this, &idleTasks] {
        QTest::keyClick(panel_->windowHandle(), Qt::Key_A);
        panel_->closePanel();
        VLEventTracker::whenIdle(panel_, [&idleTasks] { ++idleTasks; });
        VLEventTracker::whenIdle(std::make_unique<QObject>().get(), [] { FAIL(); });
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_TRUE(view_);
        EXPECT_EQ(idleTasks, 0);
    };
    QTimer::singleShot(0, [this] { pointer_.moveTo({60, 60}); });
    QTest::mousePress(panel_->windowHandle(), Qt::LeftButton, {}, {50, 50});
    QTestPrivate::qtestMouseButtons = Qt::NoButton;
    EXPECT_EQ(idleTasks, 1);
    EXPECT_TRUE(vorla::test::waitUntil([this] { return !view_; }));
}

TEST_F(EventTracker, EndsWhenTheProgramQuitsDuringADrag) {
    view_->atDrag = [] { QCoreApplication::exit(7); };
    QTimer::singleShot(0, [this] {
        QTimer::singleShot(0, [this] { pointer_.moveTo({60, 60}); });
        QTest::mousePress(panel_->windowHandle(), Qt::LeftButton, {}, {50, 50});
    });
    EXPECT_EQ(QCoreApplication::exec(), 7);
    EXPECT_FALSE(VLEventTracker::isTracking());
    EXPECT_FALSE(view_->result);
    QTestPrivate::qtestMouseButtons = Qt::NoButton;
}

}  // namespace
