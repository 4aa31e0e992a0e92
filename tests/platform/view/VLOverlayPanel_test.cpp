#include "platform/view/VLOverlayPanel.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QPainter>
#include <QTest>
#include <QTextEdit>
#include <QWheelEvent>
#include <QWindow>

#include "platform/view/PressMonitor.h"
#include "platform/view/VLButton.h"
#include "platform/view/VLPanel.h"
#include "tests/support/OffscreenScreens.h"
#include "tests/support/Pointer.h"

namespace {

using Words = std::vector<std::string>;
using vorla::test::Pointer;

/// Paints itself in one colour and writes down what reaches it.
class ColourView : public VLView {
 public:
    ColourView(const VLRect& frame, const QColor& colour, Words* heard = nullptr)
        : VLView(frame), colour_(colour), heard_(heard) {}
    bool performKeyEquivalent(QKeyEvent& event) override {
        if (event.key() == takes) return heard_->emplace_back("taken"), true;
        return VLView::performKeyEquivalent(event);
    }
    int takes = 0;

 protected:
    void drawRect(QPainter& painter, const VLRect& /*dirty*/) override {
        painter.fillRect(QRectF(-5.0, -5.0, 2000.0, 2000.0), colour_);
    }
    void mouseDown(const VLMouseEvent& /*event*/) override { hear("press"); }
    void mouseMoved(const VLMouseEvent& /*event*/) override { hear("move"); }
    void wheelEvent(QWheelEvent* /*event*/) override { hear("wheel"); }

 private:
    void hear(const char* word) {
        if (heard_) heard_->emplace_back(word);
    }
    QColor colour_;
    Words* heard_;
};

class ScreenPanel : public VLPanel {
 public:
    explicit ScreenPanel(Words& heard) : VLPanel(27), heard_(heard) {}

 protected:
    bool performKeyEquivalent(QKeyEvent& event) override {
        if (event.key() == Qt::Key_Control) return false;
        heard_.push_back("panel " + QKeySequence(event.keyCombination()).toString().toStdString());
        return true;
    }
    void rightMouseDown(const VLMouseEvent& /*event*/) override { heard_.emplace_back("right"); }

 private:
    Words& heard_;
};

/// A white screen of 640 x 400 points with child panels on it.
class Overlays : public testing::TestWithParam<double> {
 protected:
    Overlays() {
        panel_ = new ScreenPanel(heard_);
        panel_->setScreen(vorla::test::screenOfScale(GetParam()));
        const QPoint corner = panel_->screen()->geometry().topLeft();
        panel_->setGeometry(corner.x(), corner.y(), 640, 400);
        content_ = new ColourView({}, Qt::white, &heard_);
        panel_->setContentView(content_);
        panel_->makeKeyAndOrderFront();
        pointer_ = Pointer(panel_);
        vorla::test::runPending();
    }
    ~Overlays() override {
        if (panel_) panel_->closePanel();
        vorla::test::runPending();
    }

    static VLOverlayPanel* overlay(const VLRect& frame, int level, const QColor& colour) {
        auto* made = new VLOverlayPanel(frame, level);
        made->setContentView(new ColourView({}, colour));
        return made;
    }
    /// What the screen shows at a point.
    [[nodiscard]] QColor shown(VLPoint at) const {
        const QImage image = panel_->grab().toImage();
        return image.pixelColor(int(at.x * GetParam()), int((400.0 - at.y) * GetParam()));
    }
    Words said() { return std::exchange(heard_, {}); }

    Words heard_;
    QPointer<ScreenPanel> panel_;
    ColourView* content_ = nullptr;
    Pointer pointer_{nullptr};
};

TEST_P(Overlays, AreOrderedByLevelAndAboveTheirParents) {
    auto* low = overlay({100, 100, 100, 100}, 3, Qt::red);
    auto* high = overlay({150, 100, 100, 100}, 101, Qt::green);
    auto* child = overlay({120, 150, 200, 100}, 1, Qt::blue);
    panel_->addChild(high);
    panel_->addChild(low);
    low->addChild(child);
    EXPECT_EQ(shown({110, 110}), Qt::red);
    EXPECT_EQ(shown({160, 110}), Qt::green);
    EXPECT_EQ(shown({130, 160}), Qt::blue) << "above its parent";
    EXPECT_EQ(shown({160, 160}), Qt::green) << "below what is above its parent";
    high->setLevel(2);
    EXPECT_EQ(shown({160, 110}), Qt::red);
    low->setFrameOrigin({300, 100});
    EXPECT_EQ(child->frame(), (VLRect{320, 150, 200, 100})) << "a child moves with its parent";
    low->orderOut();
    EXPECT_EQ(shown({330, 160}), Qt::white);
    low->orderFront();
    EXPECT_EQ(shown({330, 160}), Qt::blue);
    low->setAlphaValue(0.5);
    EXPECT_NEAR(shown({310, 110}).green(), 128, 2) << "half of it shows the screen";
    low->setAlphaValue(1.0);
    low->removeFromParent();
    EXPECT_EQ(shown({330, 160}), Qt::white);
    panel_->addChild(low);
    EXPECT_EQ(shown({330, 160}), Qt::blue) << "its children come back with it";
    low->addChild(low);
    child->addChild(low);  // a panel cannot be above itself
    EXPECT_EQ(panel_->overlays(), (std::vector<VLOverlayPanel*>{high, low}));
    QPointer<VLOverlayPanel> orphan(child);
    low->closePanel();
    vorla::test::runPending();
    EXPECT_TRUE(orphan && orphan->isHidden());
}

TEST_P(Overlays, SwallowPressesAndAreDraggedByTheirBackground) {
    auto* bar = new VLOverlayPanel({100, 100, 200, 50}, 3);
    panel_->addChild(bar);
    pointer_.moveTo({150, 280});
    said();
    pointer_.moveTo({151, 280});
    pointer_.click({150, 280});
    pointer_.click({150, 280}, 1, Qt::RightButton);
    QWheelEvent wheel({150, 280}, {150, 280}, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(panel_->windowHandle(), &wheel);
    EXPECT_EQ(said(), Words());
    pointer_.drag({{150, 280}, {190, 250}});
    EXPECT_EQ(bar->frame().origin(), (VLPoint{100, 100}));
    bar->setMovableByBackground(true);
    pointer_.drag({{150, 280}, {190, 250}});
    EXPECT_EQ(bar->frame().origin(), (VLPoint{140, 130}));
    pointer_.drag({{190, 250}, {630, 5}});
    EXPECT_EQ(bar->frame().origin(), (VLPoint{440, 350})) << "it stays on the screen";
    pointer_.click({20, 20});
    EXPECT_EQ(said(), Words({"move", "press"}));
}

TEST_P(Overlays, PressMonitorsSeeEveryPressAndMayEndInIt) {
    auto* menu = overlay({100, 100, 100, 100}, 3, Qt::red);
    panel_->addChild(menu);
    std::vector<VLOverlayPanel*> pressed;
    std::unique_ptr<vorla::PressMonitor> monitor;
    monitor = std::make_unique<vorla::PressMonitor>([&](const auto& press) {
        EXPECT_EQ(press.panel, panel_);
        pressed.push_back(press.overlay);
        if (press.overlay) return;
        monitor.reset();
        menu->closePanel();
    });
    pointer_.click({150, 250});
    pointer_.click({20, 20}, 1, Qt::RightButton);
    pointer_.click({150, 250});
    EXPECT_EQ(pressed, (std::vector<VLOverlayPanel*>{menu, nullptr}));
    EXPECT_EQ(said(), Words({"move", "right", "move", "press"})) << "they go on";
}

TEST_P(Overlays, KeysGoToTheFirstResponderThenDownTheTreeThenToThePanel) {
    auto* bar = overlay({100, 100, 200, 100}, 3, Qt::red);
    panel_->addChild(bar);
    auto* text = new QTextEdit(bar);
    text->setGeometry(10, 10, 100, 50);
    text->show();
    content_->takes = Qt::Key_Z;
    const auto undo = [this] {
        QTest::keyClick(panel_->windowHandle(), Qt::Key_Z, Qt::ControlModifier);
    };
    pointer_.click({120, 220});  // on the text: it does not take the keys
    pointer_.key(Qt::Key_A);
    undo();
    EXPECT_EQ(said(), Words({"panel A", "taken"}));

    panel_->makeFirstResponder(text);
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_Return, Qt::Key_B, Qt::Key_Delete, Qt::Key_Tab})
        pointer_.key(key);
    pointer_.click({500, 50});  // nor does a press elsewhere take them away
    EXPECT_EQ(said(), Words({"move", "press"}));
    EXPECT_EQ(text->toPlainText(), "a\nb\t");
    EXPECT_TRUE(panel_->editsText());
    undo();
    EXPECT_NE(text->toPlainText(), "a\nb\t") << "the text has something to undo";
    text->setUndoRedoEnabled(false);
    undo();
    pointer_.key(Qt::Key_Escape);
    EXPECT_EQ(said(), Words({"taken", "panel Esc"}));

    QInputMethodEvent composing(QStringLiteral("zhong"), {});
    QCoreApplication::sendEvent(text, &composing);
    pointer_.key(Qt::Key_Escape);
    EXPECT_EQ(said(), Words()) << "it ends the composition";
    QInputMethodEvent committed;
    QCoreApplication::sendEvent(text, &committed);
    pointer_.key(Qt::Key_Escape);
    EXPECT_EQ(said(), Words({"panel Esc"}));

    bar->orderOut();
    EXPECT_EQ(panel_->firstResponder(), nullptr);
    pointer_.key(Qt::Key_Return);
    EXPECT_EQ(said(), Words({"panel Return"}));
}

TEST_P(Overlays, ButtonsFireOnEveryReleaseThatReachesThem) {
    auto* bar = new VLOverlayPanel({100, 100, 200, 50}, 3);
    auto* button = new VLButton({10, 10, 30, 30});
    bar->addSubview(button);
    panel_->addChild(bar);
    int fired = 0;
    button->action = [&fired](VLButton& b) {
        ++fired;
        EXPECT_TRUE(!b.isSelected() || fired > 1) << "the flags come after the action";
    };
    button->setTitle(QStringLiteral("Undo"));
    pointer_.drag({{120, 280}, {400, 100}}, [&] { EXPECT_FALSE(button->isPressed()); });
    EXPECT_EQ(fired, 1);
    EXPECT_TRUE(button->isSelected());
    button->setEnabled(false);
    EXPECT_FALSE(button->isSelected());
    pointer_.click({120, 280});
    EXPECT_EQ(fired, 1);
    button->setEnabled(true);
    auto* accessible = QAccessible::queryAccessibleInterface(button);
    ASSERT_TRUE(accessible);
    EXPECT_EQ(accessible->role(), QAccessible::PushButton);
    EXPECT_EQ(accessible->text(QAccessible::Name), "Undo");
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(fired, 2);
    button->action = [&](VLButton&) { bar->closePanel(), delete button; };
    pointer_.click({120, 280});
    EXPECT_EQ(said(), Words());
}

INSTANTIATE_TEST_SUITE_P(Scales, Overlays, testing::Values(1.0, 2.0));

}  // namespace
