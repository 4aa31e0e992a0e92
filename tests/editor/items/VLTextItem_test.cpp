#include "editor/items/VLTextItem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QTest>
#include <QWindow>

#include "editor/items/VLLayoutManager.h"
#include "editor/items/VLSelectedTextView.h"
#include "editor/items/VLTagItem.h"
#include "platform/view/VLPanel.h"
#include "platform/view/VLView.h"
#include "tests/editor/items/ItemPainting.h"
#include "tests/support/OffscreenScreens.h"
#include "tests/support/Pointer.h"

namespace {

using vorla::test::largestDifference;
using Range = VLTextViewBasedItem::Range;

/// A canvas that draws one item all over again at each change.
class Canvas : public VLView, public VLEditItemSuperView {
 public:
    using VLView::VLView;
    void itemDidChange(const VLEditItem&) override { setNeedsDisplay(); }
    void itemDidGrow(const VLEditItem&, const VLRect&) override { setNeedsDisplay(); }
    VLView* view() override { return this; }
    bool performKeyEquivalent(QKeyEvent& event) override {
        if (event.key() < Qt::Key_Shift || event.key() > Qt::Key_Alt) keys.push_back(event.key());
        return true;
    }

    std::shared_ptr<VLEditItem> item;
    std::vector<int> keys;

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override {
        painter.setRenderHint(QPainter::Antialiasing);
        if (item) item->drawGraph(painter, dirtyRect);
    }
};

class TextItem : public testing::TestWithParam<double> {
 protected:
    TextItem() : panel_(new VLPanel(1)), canvas_(new Canvas({20.5, 30.5, 400.0, 300.0})) {
        panel_->coverScreen(vorla::test::screenOfScale(GetParam()));
        auto* root = new VLView;
        panel_->setContentView(root);
        root->addSubview(canvas_);
        panel_->makeKeyAndOrderFront();
        vorla::test::waitUntil([this] { return panel_->isActiveWindow(); });
    }
    ~TextItem() override {
        canvas_->item.reset();
        item_.reset();
        panel_->closePanel();
        vorla::test::runPending();
    }

    template <typename Item = VLTextItem>
    Item& make(double size, const QString& text = {}, VLPoint at = {60.5, 200.25}) {
        // The panel owns the canvas.
        const std::shared_ptr<VLEditItemSuperView> view(canvas_, [](VLEditItemSuperView*) {});
        views_.push_back(view);
        auto item = std::make_shared<Item>(view, VLPoint{}, VLSize{});
        item->setNormalStrokeWidth(size);
        item->setNormalStrokeColor(Qt::red);
        item->moveToPoint(at);
        if (!text.isEmpty()) item->setContentString(text);
        canvas_->item = item_ = item;
        return *item;
    }
    void type(const QString& text) {
        for (const QChar c : text)
            QTest::keyClick(panel_->windowHandle(),
                            c == u'\n' ? Qt::Key_Return : Qt::Key(c.toUpper().unicode()), {});
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(panel_->windowHandle(), key, modifiers);
    }
    static void compose(VLTextViewBasedItem& item, const QString& preedit, const QString& commit) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(item.textView(), &event);
    }
    QImage picture() {
        vorla::test::runPending();
        return renderViewTree(*canvas_, canvas_->bounds(), GetParam());
    }

    VLPanel* panel_;
    Canvas* canvas_;
    std::shared_ptr<VLEditItem> item_;
    std::vector<std::shared_ptr<VLEditItemSuperView>> views_;
};

/// What the text view shows and what the item draws afterwards are the same pixels.
TEST_P(TextItem, LooksTheSameWhileEditedAndAfterwards) {
    const char* texts[] = {"Hello, fjord",      "a\nlonger line\n\nq", "שלום עולם\nאב ab",
                           "مرحبا بالعالم\nنص", "你好，世界",          "ok \U0001F600\U0001F44D x",
                           "éÂ ภาษาไทย"};
    for (const char* text : texts)
        for (const double size : {12.0, 36.0, 72.0}) {
            auto& item = make(size, QString::fromUtf8(text));
            const QImage before = picture();
            item.setEditType(VLEditTypeEdit);
            ASSERT_TRUE(item.textView());
            panel_->makeFirstResponder(nullptr);  // no caret
            const QImage editing = picture();
            item.setEditType(VLEditTypeNormal);
            const QImage after = picture();
            EXPECT_EQ(largestDifference(editing, after), 0) << text << " " << size;
            EXPECT_EQ(largestDifference(before, after), 0) << text << " " << size;
            EXPECT_NE(largestDifference(after, QImage(after.size(), after.format())), 0);
        }
}

TEST_P(TextItem, GrowsToTheRightAndDownward) {
    auto& item = make(24);
    item.setEditType(VLEditTypeEdit);
    const VLRect empty = item.textFrame();
    EXPECT_EQ(empty.size(), item.minSizeOfTextViewWithFont(VLLayoutManager::systemFontOfSize(24)));
    EXPECT_EQ(item.bounds().size(), (VLSize{empty.width + 10, empty.height + 10}));
    type("wide\nlines");
    EXPECT_EQ(item.contentString(), "wide\nlines");
    EXPECT_GT(item.textFrame().width, empty.width);
    EXPECT_EQ(item.textFrame().height, 2 * empty.height);
    EXPECT_EQ(item.textFrame().x, empty.x);
    EXPECT_EQ(item.textFrame().maxY(), empty.maxY());
    const VLSize measured =
        item.sizeOfTextViewWithString(item.contentString(), VLLayoutManager::systemFontOfSize(24));
    EXPECT_EQ(item.textFrame().size(), measured);
    item.setNormalStrokeWidth(48);
    EXPECT_NEAR(item.textFrame().height, 2 * measured.height, 2);
    EXPECT_EQ(item.textFrame().maxY(), empty.maxY());
    item.move({10, -5});
    EXPECT_EQ(item.textFrame().x, empty.x + 10);
    EXPECT_EQ(item.center(), (VLPoint{item.textFrame().midX(), item.textFrame().midY()}));
}

/// Lines that run to the left end at the right edge.
TEST_P(TextItem, AlignsLinesByTheirDirection) {
    auto& item = make(36, QString::fromUtf8("a long first line\nאב"));
    const QImage shown = picture();
    const auto hasInk = [&](double fromX, double toX) {
        const VLRect text = item.textFrame();
        for (int y = static_cast<int>((300 - text.midY()) * GetParam()) + 4;
             y < (300 - text.y) * GetParam(); ++y)
            for (int x = static_cast<int>(fromX * GetParam()); x < toX * GetParam(); ++x)
                if (qAlpha(shown.pixel(x, y)) > 0) return true;
        return false;
    };
    EXPECT_TRUE(hasInk(item.textFrame().maxX() - 30, item.textFrame().maxX()));
    EXPECT_FALSE(hasInk(item.textFrame().x, item.textFrame().midX()));
}

TEST_P(TextItem, UndoesTypingBeforeTheCanvasDoes) {
    auto& item = make(16, "kept");
    item.setEditType(VLEditTypeEdit);
    key(Qt::Key_Z, Qt::ControlModifier);  // the text from before the edit is not typing
    EXPECT_EQ(item.contentString(), "kept");
    EXPECT_THAT(canvas_->keys, testing::ElementsAre(Qt::Key_Z));
    type(" it");
    key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(item.contentString(), "kept");
    key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(item.contentString().toLower(), "kept it");
    EXPECT_EQ(canvas_->keys.size(), 1U);
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(item.contentString(), "");
    EXPECT_EQ(QGuiApplication::clipboard()->text().toLower(), "kept it");
    key(Qt::Key_V, Qt::ControlModifier);
    key(Qt::Key_Enter);
    key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(item.contentString().toLower(), "kept it\nkept it");
    key(Qt::Key_Backspace);
    EXPECT_EQ(item.contentString().size(), 14);
    EXPECT_EQ(canvas_->keys.size(), 1U);
}

/// A composition is shown in place, counts for the size, and survives the end of the edit.
TEST_P(TextItem, TakesCompositions) {
    auto& item = make(20, "a");
    item.setEditType(VLEditTypeEdit);
    const double width = item.textFrame().width;
    const auto caret = [&] {
        return item.textView()->inputMethodQuery(Qt::ImCursorRectangle).toRectF();
    };
    const double caretX = caret().x();
    compose(item, QStringLiteral("ni hao"), {});
    EXPECT_EQ(item.contentString(), "a");
    EXPECT_GT(item.textFrame().width, width + 30);
    EXPECT_GT(caret().x(), caretX);
    key(Qt::Key_Escape);
    EXPECT_EQ(item.editType(), VLEditTypeEdit);
    compose(item, {}, QString::fromUtf8("你好"));
    EXPECT_EQ(item.contentString(), QString::fromUtf8("a你好"));
    compose(item, QString::fromUtf8("世"), {});
    item.setEditType(VLEditTypeNormal);
    EXPECT_EQ(item.contentString(), QString::fromUtf8("a你好世"));
}

/// Whatever fonts there are: what was typed or pasted goes, and comes, by one step each.
TEST_P(TextItem, UndoesPicturesWithWhatBroughtThem) {
    auto& item = make(16, "x");
    item.setEditType(VLEditTypeEdit);
    const QString fox = QString::fromUtf8("\U0001F98A");
    QGuiApplication::clipboard()->setText(fox + fox);
    key(Qt::Key_V, Qt::ControlModifier);
    QKeyEvent typed(QEvent::KeyPress, 0, Qt::NoModifier, fox);
    QCoreApplication::sendEvent(item.textView(), &typed);
    type("a");
    EXPECT_EQ(item.contentString().size(), 8);
    for (const int left : {7, 5, 1}) {
        key(Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(item.contentString().size(), left);
    }
    for (const int grown : {5, 7, 8}) {
        key(Qt::Key_Y, Qt::ControlModifier);
        EXPECT_EQ(item.contentString().size(), grown);
    }
}

TEST_P(TextItem, IsChangedByPrograms) {
    auto& item = make(16, "one two");
    item.insertText("not while at rest");
    item.setEditType(VLEditTypeEdit);
    item.insertText("!");
    item.insertText("- ", 0);
    EXPECT_EQ(item.clippingStringWithRange({2, 4}), "one ");
    EXPECT_EQ(item.selctedRange(), (Range{2, 0}));
    for (const Range bad : {Range{-1, 2}, Range{0, 99}, Range{7, 0}, Range{2, -1}})
        EXPECT_EQ(item.clippingStringWithRange(bad), std::nullopt);
    item.selectAll();
    EXPECT_EQ(item.selectedText(), "- two!");
    // The item may go while its text view has the keys.
    canvas_->item.reset();
    item_.reset();
    type("x");
}

/// All of the label's places follow from the text's frame; turning it keeps the dot.
TEST_P(TextItem, OfATagHangsOnADot) {
    auto& tag = make<VLTagItem>(20, "Label", {200.5, 100.5});
    const auto outside = [&](const VLRect& local) {
        return local.offsetBy(tag.center().x, tag.center().y);
    };
    for (const bool onLeft : {true, false, true}) {
        ASSERT_EQ(tag.ovalControlOnLeft(), onLeft);
        const VLRect text = tag.textFrame();
        const double dot = onLeft ? text.x - 20 : text.maxX() + 20;
        EXPECT_NEAR(tag.center().x, dot, 1e-9);
        EXPECT_EQ(outside(tag.roundRectFrame()), text.insetBy(-5, -5));
        const VLRect oval = outside(tag.ovalControlPointFrame());
        EXPECT_EQ(oval, (VLRect{dot - 4, text.maxY() - 10, 8, 8}));
        EXPECT_EQ(tag.arrowFrame().midY(), tag.ovalControlPointFrame().midY());
        struct Case {
            VLPoint fromDot;  ///< x towards the label
            bool isGraph;
            bool isReverse;
        };
        const Case cases[] = {{{0, 0}, true, true},
                              {{8.9, 8.9}, true, true},
                              {{9.1, 0}, true, false},
                              {{-9.1, 0}, true, false},
                              {{-14.1, 0}, false, false},
                              {{text.width + 29, 0}, true, false},
                              {{text.width + 36, 0}, false, false}};
        for (const auto& [fromDot, isGraph, isReverse] : cases) {
            const VLPoint at{dot + (onLeft ? fromDot.x : -fromDot.x), oval.midY() + fromDot.y};
            EXPECT_EQ(tag.mouseHitGraph(at), isGraph) << fromDot.x;
            EXPECT_EQ(tag.mouseHitReverseControlPoints(at), isReverse) << fromDot.x;
        }
        tag.reverse();
    }
    const VLRect before = tag.textFrame();
    tag.setContentString("Label\nof more");
    EXPECT_EQ(tag.textFrame().maxY(), before.maxY());
    const QImage shown = picture();
    const auto pixel = [&](VLPoint at) {
        return shown.pixel(static_cast<int>(at.x * GetParam()),
                           static_cast<int>((300 - at.y) * GetParam()));
    };
    const VLRect label = outside(tag.roundRectFrame());
    EXPECT_EQ(pixel({tag.center().x, outside(tag.ovalControlPointFrame()).midY()}),
              QColor(Qt::red).rgba());
    EXPECT_EQ(pixel({label.x + 2.5, label.midY()}), qRgba(0, 0, 0, 179));
    EXPECT_EQ(pixel({label.midX(), label.maxY() + 2.5}), 0U);
}

INSTANTIATE_TEST_SUITE_P(Scales, TextItem, testing::Values(1.0, 2.0));

}  // namespace
