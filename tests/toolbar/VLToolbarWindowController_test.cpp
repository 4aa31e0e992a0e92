#include "toolbar/VLToolbarWindowController.h"

#include <QAccessible>
#include <QTextEdit>

#include "editor/VLUndoManager.h"
#include "tests/toolbar/ToolbarTest.h"
#include "toolbar/VLToolbarFunctionButtonType.h"

using Strings = std::vector<std::string>;
using vorla::NotificationCenter;
using vorla::test::runPending;

class VorlaToolbar : public Toolbar {
 protected:
    VorlaToolbar() : Toolbar("Vorla-theme") {}
};

TEST_F(Toolbar, EachToolTellsEditorPopoverAndStatistics) {
    const struct {
        int64_t type;
        int event;
        Strings heard;
    } rows[] = {
        {1, 1000, {"tool 1", "width 3", "colour #ff0000"}},
        {2, 1001, {"tool 2", "width 3", "colour #ff0000"}},
        {3, 1002, {"tool 3", "width 3", "colour #ff0000"}},
        {5, 1003, {"tool 5", "width 3", "colour #ff0000"}},
        {6, 1005, {"tool 6", "width 3"}},
        {4, 1004, {"tool 4", "colour #ff0000", "width 14"}},
        {7, 1006, {"tool 7", "colour #ff0000", "width 14"}},
    };
    Qt::Key key = Qt::Key_1;
    for (const auto& row : rows) {
        for (const bool byKey : {false, true}) {
            events_.clear();
            byKey ? pointer_.key(key) : clickTool(row.type);
            EXPECT_EQ(events_, std::vector{row.event});
            EXPECT_EQ(editor_->take(), row.heard) << row.type;
            EXPECT_EQ(view().graphTypeSelected(), row.type);
            EXPECT_TRUE(view().graphButtonByGraphType(row.type)->isSelected());
            EXPECT_EQ(popover().graphType(), row.type);
        }
        key = static_cast<Qt::Key>(key + 1);
    }
    EXPECT_EQ(posted_, Strings{NotificationEditDidBegin}) << "once in a toolbar's life";
    EXPECT_FALSE(view().graphButtonByGraphType(1)->isSelected());
}

TEST_F(Toolbar, EachFunctionPostsAndThenEditingBegins) {
    const struct {
        int64_t type;
        int event;
        std::string post;
    } rows[] = {{VLToolbarFunctionButtonTypeSave, 1008, "notificationcapturedidfinish true"},
                {VLToolbarFunctionButtonTypeCancel, 1010, "notificationcapturedidcancel"},
                {VLToolbarFunctionButtonTypeOK, 1009, "notificationcapturedidfinish"}};
    for (const auto& row : rows) {
        events_.clear();
        posted_.clear();
        clickFunction(row.type);
        EXPECT_EQ(events_, std::vector{row.event});
        const bool first = row.type == VLToolbarFunctionButtonTypeSave;
        EXPECT_EQ(posted_,
                  first ? Strings({row.post, NotificationEditDidBegin}) : Strings{row.post});
    }
    EXPECT_EQ(editor_->take(), Strings{});
}

TEST_F(Toolbar, UndoFollowsTheCheckpoints) {
    const auto checkpoint = [](const VLUndoManager* manager) {
        NotificationCenter::defaultCenter().post(NSUndoManagerCheckpointNotification, manager);
    };
    EXPECT_FALSE(view().enableUndo());
    clickFunction(VLToolbarFunctionButtonTypeUndo);
    EXPECT_EQ(events_, std::vector<int>{});
    VLUndoManager manager;
    manager.registerUndo([] {});
    checkpoint(&manager);
    NotificationCenter::defaultCenter().post(NSUndoManagerCheckpointNotification);
    EXPECT_TRUE(view().enableUndo());
    clickFunction(VLToolbarFunctionButtonTypeUndo);
    EXPECT_EQ(editor_->take(), Strings{"undo"});
    manager.undo();
    checkpoint(&manager);
    EXPECT_FALSE(view().enableUndo());
}

TEST_F(Toolbar, AReleaseOutsideStillFiresAndARightPressDoesNothing) {
    const QPoint tool = middleOf(*view().graphButtonByGraphType(2));
    pointer_.drag({tool, tool + QPoint(0, -200)});
    EXPECT_EQ(editor_->take(), Strings({"tool 2", "width 3", "colour #ff0000"}));
    pointer_.click(tool, 1, Qt::RightButton);
    pointer_.click({100 + 470, 600 - 305}, 1, Qt::RightButton);
    EXPECT_EQ(editor_->take(), Strings{});
    EXPECT_EQ(posted_, Strings{NotificationEditDidBegin});
}

TEST_F(Toolbar, IsDraggedByItsBackgroundWithItsPopover) {
    clickTool(1);
    finishAnimation();
    const VLPoint before = popover().window()->frame().origin();
    const QPoint grip(103, 600 - 303);
    pointer_.drag({grip, grip + QPoint(40, 20), grip + QPoint(80, 40)});
    EXPECT_EQ(toolbar_->window()->frame().origin(), (VLPoint{180, 260}));
    EXPECT_EQ(popover().window()->frame().origin() - before, (VLPoint{80, -40}));
}

TEST_F(Toolbar, FollowsTheFocusWithoutTellingOrStoringAnything) {
    clickTool(3);
    editor_->take();
    focusItem(4, 48.0, {0.0, 1.0, 0.0, 1.0});
    EXPECT_EQ(view().graphTypeSelected(), 4);
    EXPECT_EQ(popover().fontSizeView()->fontSize(), 48U);
    EXPECT_EQ(popover().lineColorView()->selectedColor(), QColor(Qt::green));
    EXPECT_EQ(editor_->take(), Strings{});
    focusItem(1, 9.0, {0.0, 0.0, 1.0, 1.0});
    EXPECT_EQ(popover().lineWidthView()->width(), 9U);
    auto& defaults = vorla::UserDefaults::standardUserDefaults();
    for (const char* type : {"1", "3", "4"})
        EXPECT_FALSE(
            defaults.objectForKey(std::string("VLToolbarConfigurationWithGraphType_") + type));
    NotificationCenter::defaultCenter().post(
        VLNotificationBeginCreateItem,
        VLNotificationDictionary{{VLFocusItemGraphType, int64_t{1}}});
    EXPECT_EQ(editor_->take(), Strings({"width 3", "colour #ff0000"}));
    NotificationCenter::defaultCenter().post(VLNotificationFocusItemDidChange);
    EXPECT_EQ(view().graphTypeSelected(), 0);
}

TEST_F(Toolbar, KeysTypeWhereTextIsEdited) {
    auto* text = new QTextEdit(panel_->contentView());
    text->show();
    panel_->makeFirstResponder(text);
    pointer_.key(Qt::Key_3);
    EXPECT_EQ(editor_->take(), Strings{});
    pointer_.click(middleOf(*view().graphButtonByGraphType(3)));
    EXPECT_EQ(panel_->firstResponder(), text) << "a click leaves the keys with the text";
    toolbar_->window()->orderOut();
    panel_->makeFirstResponder(nullptr);
    editor_->take();
    pointer_.key(Qt::Key_3);
    EXPECT_EQ(editor_->take(), Strings{}) << "a toolbar that nobody sees";
}

TEST_F(Toolbar, AnEndedSessionReachesNoneThatTheHostHasBegun) {
    VLPanel* next = nullptr;
    vorla::NotificationObservers host;
    host.observe(NotificationCaptureDidFinish, [&](const vorla::Notification&) {
        panel_->closePanel();
        toolbar_.reset();
        next = new VLPanel(27);
        next->setGeometry(0, 0, 100, 100);
        next->makeKeyAndOrderFront();
        runPending();
        posted_.clear();
    });
    clickFunction(VLToolbarFunctionButtonTypeOK);
    EXPECT_EQ(posted_, Strings{});
    next->closePanel();
}

TEST_F(VorlaToolbar, HasTheFourFunctionsAlone) {
    EXPECT_TRUE(view().graphButtonArray().empty());
    EXPECT_TRUE(view().buttonFrameOfGraphType(1).isZero());
    EXPECT_TRUE(view().enableUndo());
    pointer_.key(Qt::Key_1);
    EXPECT_EQ(editor_->take(), Strings{});
    clickFunction(VLToolbarFunctionButtonTypeUndo);
    EXPECT_EQ(editor_->take(), Strings{"undo"});
}

TEST_F(Toolbar, TakesOnAnotherThemeWhileItIsOpen) {
    clickTool(4);
    finishAnimation();
    auto& themes = VLCaptureThemeManager::sharedInstance();
    for (const char* theme : {"Tern-theme", "Vorla-theme", "Ibis-theme", "default"}) {
        themes.changeThemeTo(theme);
        runPending();
        const VLSize size = themes.themedSizeWithKey("VLToolbarPanelSize");
        EXPECT_EQ(toolbar_->window()->frame().size(), size) << theme;
        EXPECT_EQ(view().bounds().size(), size) << theme;
        EXPECT_EQ(view().graphButtonArray().empty(), themes.isVorlaTheme());
        EXPECT_EQ(popover().window()->frame().size(), popover().windowSizeOfType(12)) << theme;
        EXPECT_FALSE(renderViewTree(*popover().popoverView(), {0, 0, 50, 40}, 1.0).isNull());
    }
    EXPECT_EQ(view().graphTypeSelected(), 4);
}

TEST_F(Toolbar, ButtonsHaveNamesAndCanBePressedByScreenReaders) {
    for (auto* button : view().graphButtonArray()) {
        QAccessibleInterface* face = QAccessible::queryAccessibleInterface(button);
        ASSERT_TRUE(face);
        EXPECT_FALSE(face->text(QAccessible::Name).isEmpty());
        EXPECT_EQ(face->text(QAccessible::Name), button->toolTip());
        face->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        EXPECT_EQ(view().graphTypeSelected(), button->type());
        for (const auto* picker : popover().popoverView()->findChildren<QWidget*>())
            if (dynamic_cast<const VLButton*>(picker) &&
                picker->isVisibleTo(popover().popoverView())) {
                EXPECT_FALSE(picker->accessibleName().isEmpty()) << button->type();
            }
    }
}
