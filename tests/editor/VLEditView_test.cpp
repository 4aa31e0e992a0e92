// What presses, drags and keys do on the canvas, and that undo takes each of it back.

#include "editor/VLEditView.h"

#include <QInputMethodEvent>

#include "editor/VLEditNotifications.h"
#include "editor/items/VLTextViewBasedItem.h"
#include "platform/base/NotificationCenter.h"
#include "tests/editor/CanvasTest.h"
#include "theme/VLCursor.h"

namespace {

using Path = std::vector<VLPoint>;

TEST_P(Canvas, APressNeedsADragToMakeAnItemAndToolZeroMakesNone) {
    std::vector<int64_t> begun;
    vorla::NotificationObservers observers;
    observers.observe(VLNotificationBeginCreateItem, [&](const vorla::Notification& n) {
        const auto* values = std::any_cast<VLNotificationDictionary>(&n.object);
        begun.push_back(notificationValue<int64_t>(*values, VLFocusItemGraphType).value_or(-1));
    });
    for (const VLEditGraphType type :
         {VLEditGraphTypeNone, VLEditGraphTypeRoundRect, VLEditGraphTypeCurve}) {
        view().setGraphType(type);
        click({100, 100});
        EXPECT_TRUE(view().itemArray().empty());
    }
    drag({{100, 100}, {101, 101}});
    view().setGraphType(VLEditGraphTypeNone);
    drag({{200, 100}, {300, 200}});
    EXPECT_EQ(begun, (std::vector<int64_t>{0, 1, 5, 5, 0}));
    ASSERT_EQ(view().itemArray().size(), 1U);
    EXPECT_FALSE(view().focusItem());
    EXPECT_EQ(view().itemArray()[0]->editType(), VLEditTypeNormal);
}

TEST_P(Canvas, PressesGoToHandlesOutlinesAndThroughTheMiddle) {
    const auto lower = draw(VLEditGraphTypeRoundRect, {{100, 100}, {300, 250}});
    const auto upper = draw(VLEditGraphTypeOval, {{250, 150}, {400, 300}});
    click({100, 180});
    EXPECT_EQ(view().focusItem(), lower);
    EXPECT_EQ(view().itemArray().back(), lower);  // the focus comes to the top
    vorla::test::runPending();
    EXPECT_EQ(view().updateFocusItem({300, 250})->cursorType, VLCursorTypeResize45);
    EXPECT_EQ(view().updateFocusItem({306, 250})->cursorType, VLCursorTypeRotate45);
    EXPECT_EQ(view().updateFocusItem({200, 250})->cursorType, VLCursorTypeResize90);
    EXPECT_EQ(view().updateFocusItem({100, 175})->cursorType, VLCursorTypeResize0);
    EXPECT_EQ(view().updateFocusItem({100, 210})->cursorType, VLCursorTypeMove);
    EXPECT_FALSE(view().updateFocusItem({150, 200}));
    drag({{150, 180}, {180, 200}});  // the empty middle makes a new item
    EXPECT_EQ(view().itemArray().size(), 3U);
    // Handles stay live without the focus: a corner is grabbed at once.
    drag({{100, 100}, {80, 90}});
    EXPECT_EQ(view().focusItem(), lower);
    EXPECT_EQ(lower->size(), (VLSize{220, 160}));
    key(Qt::Key_Delete);
    EXPECT_EQ(view().itemArray().size(), 2U);
    key(Qt::Key_Backspace);  // nothing has the focus
    EXPECT_EQ(view().itemArray().size(), 2U);
    EXPECT_NE(upper, nullptr);
}

TEST_P(Canvas, ADoubleClickOnBareCanvasFinishes) {
    int finished = 0;
    vorla::NotificationObservers observers;
    observers.observe(NotificationCaptureDidFinish, [&](const auto&) { ++finished; });
    view().setGraphType(VLEditGraphTypeRoundRect);
    click({100, 100}, 2);
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(events_, std::vector<int>{1013});
    EXPECT_TRUE(view().itemArray().empty());
    view().setGraphType(VLEditGraphTypeText);
    click({300, 100}, 2);  // the first opens a text, the second lands in it
    EXPECT_EQ(finished, 1);
}

TEST_P(Canvas, TextOpensAtThePressClosesOnBareCanvasAndIsUndone) {
    view().setGraphType(VLEditGraphTypeText);
    click({100, 100});
    ASSERT_EQ(view().itemArray().size(), 1U);
    const auto text = std::dynamic_pointer_cast<VLTextViewBasedItem>(view().itemArray()[0]);
    EXPECT_EQ(text->editType(), VLEditTypeEdit);
    for (const Qt::Key letter : {Qt::Key_A, Qt::Key_B}) key(letter);
    click({400, 300});
    EXPECT_EQ(view().itemArray().size(), 1U);
    EXPECT_EQ(text->contentString(), "ab");
    EXPECT_NE(text->editType(), VLEditTypeEdit);
    const VLPoint inside = text->center();
    click(inside, 2);
    key(Qt::Key_C);
    const QImage result = delivered();
    expectDrawnAnew(result);  // no caret, no border
    EXPECT_EQ(text->contentString().size(), 3);
    EXPECT_TRUE(view().undo());
    EXPECT_EQ(text->contentString(), "ab");
    view().redo();
    EXPECT_EQ(text->contentString().size(), 3);
}

/// What a text edit leaves behind it: one step from the text before it to the text after it.
TEST_P(Canvas, AnEditOfATextIsOneStep) {
    view().setGraphType(VLEditGraphTypeText);
    click({100, 100});
    const auto text = std::dynamic_pointer_cast<VLTextViewBasedItem>(view().itemArray()[0]);
    key(Qt::Key_A);
    click({400, 300});
    click(text->center(), 2);
    QInputMethodEvent composed(QStringLiteral("ni"), {});
    QCoreApplication::sendEvent(text->textView(), &composed);
    click({400, 300});  // ends the composition, which stays
    EXPECT_EQ(text->contentString(), "ani");
    EXPECT_TRUE(view().undo());
    EXPECT_EQ(text->contentString(), "a");
    EXPECT_TRUE(view().redo());
    EXPECT_EQ(text->contentString(), "ani");
    click(text->center(), 2);
    view().undo();  // within the next edit: the press, then the text
    view().undo();
    EXPECT_EQ(text->contentString(), "a");
    click({400, 300});
    EXPECT_TRUE(view().redo());
    EXPECT_EQ(text->contentString(), "ani");
}

TEST_P(Canvas, AHandleThatWasOnlyPressedLeavesTheItemAsItWas) {
    const auto rect = draw(VLEditGraphTypeRoundRect, {{100, 100}, {300, 250}});
    view().setFocusItem(rect);
    vorla::test::runPending();
    click({300, 100});
    click({100, 100});
    drag({{300, 250}, {320, 260}});
    EXPECT_EQ(rect->size(), (VLSize{220, 160}));
    view().undo();
    EXPECT_EQ(rect->size(), (VLSize{200, 150}));
}

/// One step of each kind; all taken back and done again produces the same pictures byte for byte.
TEST_P(Canvas, EveryStepIsUndoneAndRedone) {
    std::vector<QImage> after{delivered()};
    const auto step = [&](const std::function<void()>& action) {
        action();
        after.push_back(delivered());
    };
    std::shared_ptr<VLEditItem> rect;
    step([&] { rect = draw(VLEditGraphTypeRoundRect, {{100, 100}, {300, 250}}); });
    step([&] { draw(VLEditGraphTypeMosaicPen, {{50, 50}, {60, 60}, {350, 200}, {400, 90}}); });
    step([&] { draw(VLEditGraphTypeCurve, {{90, 90}, {95, 95}, {250, 300}, {500, 90}}); });
    step([&] { draw(VLEditGraphTypeArrow, {{400, 100}, {560, 300}}); });
    step([&] { draw(VLEditGraphTypeMosaicPen, {{380, 80}, {390, 90}, {400, 300}}); });
    step([&] { drag({{100, 200}, {140, 230}}); });  // moves
    view().setFocusItem(rect);
    vorla::test::runPending();
    step([&] { drag({{340, 280}, {360, 330}}); });  // resizes
    view().setFocusItem(rect);
    vorla::test::runPending();
    step([&] { drag({{366, 331}, {330, 350}}); });  // turns
    view().setFocusItem(rect);
    step([&] { view().setNormalStrokeColor(Qt::blue); });
    view().setFocusItem(rect);
    step([&] { view().setNormalStrokeWidth(9); });
    view().setFocusItem(rect);
    step([&] { key(Qt::Key_Delete); });
    EXPECT_EQ(view().itemArray().size(), 4U);
    for (size_t i = 1; i < after.size(); ++i) EXPECT_NE(after[i], after[i - 1]) << i;

    for (size_t i = after.size() - 1; i-- > 0;) {
        ASSERT_TRUE(view().undo()) << i;
        expectDrawnAnew(delivered());
    }
    EXPECT_EQ(delivered(), after[0]);
    expectShown(after[0]);
    EXPECT_FALSE(view().undo());
    while (view().redo()) {
    }
    EXPECT_EQ(view().itemArray().size(), 4U);
    EXPECT_EQ(delivered(), after.back());
    expectShown(after.back());
    view().undo();
    draw(VLEditGraphTypeOval, {{10, 10}, {40, 40}});
    EXPECT_FALSE(view().redo());
    view().setUndoManagerEnable(false);
    EXPECT_FALSE(view().undo());
}

TEST_P(Canvas, KeysUndoAndRedo) {
    draw(VLEditGraphTypeOval, {{10, 10}, {40, 40}});
    const auto count = [&] { return view().itemArray().size(); };
    key(Qt::Key_Z, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(count(), 1U);
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(count(), 0U);
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(count(), 1U);
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(count(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Scales, Canvas, testing::Values(1.0, 2.0));

}  // namespace
