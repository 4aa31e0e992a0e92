#include "theme/VLCursor.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QPixmap>

#include "platform/view/CursorStack.h"
#include "tests/support/TestResources.h"

namespace {

class Cursor : public testing::Test {
 protected:
    Cursor() {
        resources_.writeTheme(R"({"move_cursor": "move"})");
        std::ofstream(resources_.theme() + "/move.svg")
            << R"(<svg xmlns="http://www.w3.org/2000/svg" width="30" height="20"/>)";
        VLCaptureThemeManager::sharedInstance().changeThemeTo("default");
        VLCursor::clear();
    }
    ~Cursor() override {
        vorla::CursorStack::shared().clear();
        VLCursor::clear();
    }
    static Qt::CursorShape shown() {
        const QCursor* cursor = vorla::CursorStack::shared().current();
        return cursor ? cursor->shape() : Qt::LastCursor;
    }
    vorla::test::TestResources resources_;
};

TEST_F(Cursor, ComesFromTheTable) {
    auto& cursors = VLCursor::sharedInstance();
    for (const uint64_t type : {uint64_t{VLCursorTypeArrow}, uint64_t{16}, ~uint64_t{0}})
        EXPECT_EQ(cursors.cursorOfType(type).shape(), Qt::ArrowCursor) << type;
    EXPECT_EQ(cursors.cursorOfType(VLCursorTypeText).shape(), Qt::IBeamCursor);
    const QCursor move = cursors.cursorOfType(VLCursorTypeMove);
    EXPECT_EQ(move.shape(), Qt::BitmapCursor);
    EXPECT_EQ(move.hotSpot(), QPoint(15, 10));
    // A theme without the drawing has no picture to show there.
    EXPECT_EQ(cursors.cursorOfType(VLCursorTypeRotate0).shape(), Qt::ArrowCursor);
    // Kept, whatever the theme becomes.
    resources_.writeTheme("{}");
    EXPECT_EQ(cursors.cursorOfType(VLCursorTypeMove).shape(), Qt::BitmapCursor);
}

TEST_F(Cursor, TakesThePlaceOfTheOneBefore) {
    auto& stack = vorla::CursorStack::shared();
    auto& cursors = VLCursor::sharedInstance();
    for (const uint64_t type : {VLCursorTypeText, VLCursorTypeText, VLCursorTypeMove})
        cursors.setCursorType(type);
    EXPECT_EQ(cursors.cursorType(), VLCursorTypeMove);
    EXPECT_EQ(shown(), Qt::BitmapCursor);
    cursors.restoreSystemCursor();
    EXPECT_EQ(cursors.cursorType(), VLCursorTypeArrow);
    EXPECT_EQ(shown(), Qt::ArrowCursor);
    EXPECT_FALSE(stack.isEmpty());
    cursors.setCursorType(VLCursorTypeText);
    EXPECT_EQ(shown(), Qt::IBeamCursor);
    stack.pop();  // one only was ever on it
    EXPECT_TRUE(stack.isEmpty());
    EXPECT_EQ(shown(), Qt::LastCursor);
    cursors.restoreSystemCursor();  // nothing to change: the host's own cursor stays
    EXPECT_EQ(shown(), Qt::LastCursor);
    cursors.setCursorType(VLCursorTypeText);  // the type that was shown last, and no longer is
    EXPECT_EQ(shown(), Qt::IBeamCursor);
}

}  // namespace
