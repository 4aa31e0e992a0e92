#include "selection/VLCaptureView.h"

#include "tests/selection/SurfaceTest.h"
#include "theme/VLCursor.h"

namespace {

using vorla::NotificationObservers;

/// Positions of the pointer are from the upper left, rectangles from the lower left of 640 x 400.
class CaptureView : public Surface {
 protected:
    /// A confirmed region of 200 x 100 at (200, 150).
    void makeRegion() {
        pointer_.drag({{200, 150}, {400, 250}});
        ASSERT_EQ(surface().selectedRect(), (VLRect{200, 150, 200, 100}));
        ASSERT_EQ(surface().selectedItemType(), VLSelectedItemTypeIdle);
    }
    NotificationObservers observers_;
};

TEST_P(CaptureView, SnapsToTheWindowUnderThePointerUntilThePress) {
    const auto window = addWindow({100, 100, 50, 60});
    pointer_.moveTo({120, 270});
    EXPECT_EQ(surface().selectedRect(), window->windowFrame);
    EXPECT_EQ(surface().activeWindowInfo(), window);
    EXPECT_FALSE(controller_->magifierView()->isHidden());
    EXPECT_EQ(surface().cursorType(), VLCursorTypeSightingTelescope);
    pointer_.moveTo({300, 270});  // no window there: the last one stays
    EXPECT_EQ(surface().selectedRect(), window->windowFrame);
    pointer_.leave();
    EXPECT_TRUE(surface().selectedRect().isZero());
    EXPECT_TRUE(controller_->magifierView()->isHidden());
    EXPECT_TRUE(controller_->sizeInfoView()->isHidden());
}

TEST_P(CaptureView, AClickTakesTheWindowAndClosesTheRectangle) {
    const auto window = addWindow({100, 100, 50, 60});
    int begun = 0;
    int edits = 0;
    observers_.observe(VLNotificationSelectDidBegin, [&](const auto&) { ++begun; });
    observers_.observe(NotificationEditDidBegin, [&](const auto&) { ++edits; });
    pointer_.click({120, 270});
    EXPECT_EQ(surface().captureType(), VLCaptureTypeWindow);
    EXPECT_EQ(surface().selectedRect(), window->windowFrame);
    EXPECT_TRUE(surface().selectComfirmed());
    EXPECT_FALSE(surface().needDrawControlPoints());
    EXPECT_EQ(edits, 1);
    pointer_.drag({{120, 270}, {300, 300}});
    pointer_.moveTo({130, 280});
    EXPECT_EQ(surface().selectedRect(), window->windowFrame);
    EXPECT_EQ(surface().cursorType(), VLCursorTypeArrow);
    EXPECT_EQ(begun, 1);
}

TEST_P(CaptureView, AClickOnNothingConfirmsWhatThereIs) {
    pointer_.click({120, 270});
    EXPECT_EQ(surface().captureType(), VLCaptureTypeWindow);
    EXPECT_TRUE(surface().selectedRect().isZero());
    EXPECT_TRUE(surface().selectComfirmed());
}

TEST_P(CaptureView, ADragMakesARegion) {
    struct Case {
        std::vector<QPoint> path;
        VLRect result;
    };
    const Case cases[] = {
        {{{50, 60}, {150, 100}}, {50, 300, 100, 40}},
        {{{150, 100}, {300, 10}, {50, 60}}, {50, 300, 100, 40}},  // backwards, by a detour
        {{{150, 100}, {50, 60}, {150, 100}}, {150, 300, 0, 0}},   // back to its start
        {{{150, 100}, {900, 700}}, {150, 0, 490, 300}},           // pushed beyond the corner
        {{{150, 100}, {-50, -70}}, {0, 300, 150, 100}},
        {{{150, 100}, {639, 399}}, {150, 0, 490, 300}},  // the last cell is the edge
    };
    for (const Case& c : cases) {
        controller_ = VLCaptureViewController::create(frame_, frozen_);
        panel_->setContentView(controller_->view());
        pointer_.drag(c.path, [this] {
            EXPECT_FALSE(controller_->magifierView()->isHidden());
            EXPECT_EQ(surface().selectedItemType(), VLSelectedItemTypeNone);
        });
        EXPECT_EQ(surface().selectedRect(), c.result);
        EXPECT_EQ(surface().captureType(), VLCaptureTypeRegion);
        EXPECT_EQ(surface().selectedItemType(), VLSelectedItemTypeIdle);
        EXPECT_FALSE(surface().selectComfirmed());
        EXPECT_TRUE(controller_->magifierView()->isHidden());
    }
}

/// Each control point drags what it should, past the point that stays; the inside moves the whole.
TEST_P(CaptureView, ResizesByEachControlPointAndMoves) {
    const struct {
        const char* name;
        QPoint grip;
        uint64_t type, cursor;
        QPoint to;
        VLRect result;
    } cases[] = {
        {"top left", {200, 150}, 3, 7, {450, 300}, {400, 100, 50, 50}},
        {"top", {300, 150}, 5, 6, {350, 300}, {200, 100, 200, 50}},
        {"top right", {400, 150}, 3, 5, {150, 300}, {150, 100, 50, 50}},
        {"left", {200, 200}, 4, 4, {450, 170}, {400, 150, 50, 100}},
        {"right", {400, 200}, 4, 4, {150, 170}, {150, 150, 50, 100}},
        {"bottom left", {200, 250}, 3, 5, {450, 100}, {400, 250, 50, 50}},
        {"bottom", {300, 250}, 5, 6, {350, 100}, {200, 250, 200, 50}},
        {"bottom right", {400, 250}, 3, 7, {150, 100}, {150, 250, 50, 50}},
        {"inside",
         {300, 200},
         VLSelectedItemTypeMove,
         VLCursorTypeMove,
         {310, 190},
         {210, 160, 200, 100}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        controller_ = VLCaptureViewController::create(frame_, frozen_);
        panel_->setContentView(controller_->view());
        makeRegion();
        EXPECT_TRUE(surface().needDrawControlPoints());
        pointer_.moveTo(c.grip);
        EXPECT_EQ(surface().cursorType(), c.cursor);
        pointer_.drag({c.grip, c.to}, [&] {
            EXPECT_EQ(surface().selectedItemType(), c.type);
            EXPECT_EQ(controller_->magifierView()->isHidden(), c.type == VLSelectedItemTypeMove);
        });
        EXPECT_EQ(surface().selectedRect(), c.result);
        EXPECT_EQ(surface().captureType(), VLCaptureTypeRegion);
    }
}

TEST_P(CaptureView, APressBesideARegionDoesNothing) {
    makeRegion();
    int confirmed = 0;
    observers_.observe(VLNotificationCaptureDidConfirmSelection, [&](const auto&) { ++confirmed; });
    pointer_.moveTo({100, 100});
    EXPECT_EQ(surface().cursorType(), VLCursorTypeArrow);
    pointer_.drag({{100, 100}, {300, 200}});
    EXPECT_EQ(surface().selectedRect(), (VLRect{200, 150, 200, 100}));
    EXPECT_EQ(surface().selectedItemType(), VLSelectedItemTypeIdle);
    EXPECT_EQ(confirmed, 0);
    addWindow({0, 0, 640, 400});
    pointer_.moveTo({110, 110});  // and it no longer snaps
    EXPECT_EQ(surface().selectedRect(), (VLRect{200, 150, 200, 100}));
}

TEST_P(CaptureView, ADoubleClickFinishesWhereverItIs) {
    int finished = 0;
    observers_.observe(NotificationCaptureDidFinish, [&](const auto&) { ++finished; });
    makeRegion();
    for (const QPoint at : {QPoint(300, 200), QPoint(50, 50)}) {
        pointer_.click(at, 2);
        EXPECT_EQ(std::exchange(finished, 0), 1);
        EXPECT_EQ(std::exchange(events_, {}), std::vector<int>({1013}));
    }
    surface().setSelectedItemType(VLSelectedItemTypeNone);
    surface().selectedItem().setSelectedRect({});
    pointer_.click({50, 50}, 2);  // with nothing selected it is two clicks
    EXPECT_EQ(finished, 0);
}

TEST_P(CaptureView, DrawsTheFrozenPixelsDimmedAroundTheSelection) {
    pointer_.drag({{200, 150}, {400, 250}});
    surface().prepareForCapture();
    controller_->sizeInfoView()->hide();
    const QImage all = renderViewTree(*controller_->view(), frame_, scale());
    ASSERT_EQ(all.size(), screen_.size());
    const QRect hole = QRectF(200 * scale(), 150 * scale(), 200 * scale(), 100 * scale()).toRect();
    for (int y = 0; y < all.height(); ++y) {
        for (int x = 0; x < all.width(); ++x) {
            const QRgb pixel = screen_.pixel(x, y);
            const QRgb dimmed = qRgb(qRed(pixel) / 2, qGreen(pixel) / 2, qBlue(pixel) / 2);
            ASSERT_EQ(all.pixel(x, y), hole.contains(x, y) ? pixel : dimmed) << x << "," << y;
        }
    }
}

/// Only what changes is drawn again; nothing of an earlier state may stay behind.
TEST_P(CaptureView, LeavesNoTraces) {
    const auto expectFresh = [this](const char* step) {
        const QImage now = shown();
        panel_->update();
        EXPECT_EQ(now, shown()) << step;
    };
    addWindow({30, 30, 200, 200});
    addWindow({0, 0, 640, 400});
    pointer_.moveTo({50, 350});
    expectFresh("snapped");
    pointer_.moveTo({500, 50});
    expectFresh("snapped to another");
    pointer_.drag({{300, 300}, {310, 310}, {500, 390}, {100, 100}, {301, 302}, {450, 350}},
                  [&] { expectFresh("in the drag"); });
    expectFresh("dragged");
    pointer_.drag({{450, 350}, {200, 200}, {203, 203}}, [&] { expectFresh("flipped"); });
    pointer_.drag({{250, 250}, {257, 251}, {640, 400}, {100, 90}}, [&] { expectFresh("moved"); });
    expectFresh("released");
    surface().setSelectComfirmed(true);
    expectFresh("confirmed");
    surface().setNeedScreenCapture(false);
    expectFresh("out");
}

TEST_P(CaptureView, GivesTheCursorBackWhenItGoes) {
    pointer_.moveTo({50, 50});
    EXPECT_EQ(VLCursor::sharedInstance().cursorType(), VLCursorTypeSightingTelescope);
    pointer_.leave();
    EXPECT_EQ(VLCursor::sharedInstance().cursorType(), VLCursorTypeArrow);
    surface().setNeedScreenCapture(false);
    pointer_.moveTo({60, 60});
    EXPECT_EQ(VLCursor::sharedInstance().cursorType(), VLCursorTypeArrow);
}

INSTANTIATE_TEST_SUITE_P(Scales, CaptureView, testing::Values(1.0, 2.0));

}  // namespace
