// Whatever hands do in a session, nothing breaks, the canvas shows what is there and what is
// delivered, and the host hears of one end. VORLA_SEED sets another run, VORLA_SECONDS its length.

#include <QPainter>
#include <QTest>
#include <chrono>
#include <cstdlib>
#include <random>

#include "editor/VLEditViewController.h"
#include "tests/capture/SessionTest.h"
#include "tests/editor/items/ItemPainting.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

using vorla::test::runPending;

struct RealResources {
    std::string path = vorla::Bundle::framework().resourcePath();
};

class RandomHands : private RealResources, public Session {
 protected:
    RandomHands() {
        vorla::Bundle::framework().setResourcePath(path);
        VLCaptureSetting::sharedInstance().setLastSavePath(folder_.path());
        request_->setNeedSelectSavePath(false);
    }

    int upTo(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    /// Mostly about where the canvas is.
    QPoint anywhere() {
        const QSize all = panel()->size();
        if (upTo(5) == 0) return {1 + upTo(all.width() - 2), 1 + upTo(all.height() - 2)};
        return {all.width() / 5 + upTo(all.width() * 3 / 5),
                all.height() / 8 + upTo(all.height() * 3 / 5)};
    }
    static VLCaptureViewController& controller() {
        return *controllers()[0]->captureViewController();
    }
    static VLEditView* canvas() {
        const auto& editor = controller().editViewController();
        return editor && editor->view()->isVisible() ? editor->editView() : nullptr;
    }
    /// A corner, an edge or the middle of an item.
    QPoint onAnItem() {
        if (!canvas() || canvas()->itemArray().empty()) return anywhere();
        const auto& items = canvas()->itemArray();
        const auto& item = items[static_cast<size_t>(upTo(static_cast<int>(items.size())))];
        const VLRect b = item->bounds();
        const VLPoint p = canvas()->convertPointToWindow(
            item->convertPointOut({b.x + b.width * upTo(3) / 2, b.y + b.height * upTo(3) / 2}));
        const QSize all = panel()->size();
        return {std::clamp(static_cast<int>(p.x), 1, all.width() - 2),
                std::clamp(all.height() - static_cast<int>(p.y), 1, all.height() - 2)};
    }
    /// On the toolbar, its popover, or an open menu.
    QPoint onAPanel() {
        const auto panels = panel()->overlays();
        if (panels.empty()) return anywhere();
        const QRect place =
            panels[static_cast<size_t>(upTo(static_cast<int>(panels.size())))]->geometry();
        return place.topLeft() +
               QPoint(upTo(std::max(1, place.width())), upTo(std::max(1, place.height())));
    }
    QPoint place() { return upTo(3) == 0 ? anywhere() : onAnItem(); }
    void key(int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(panel()->windowHandle(), static_cast<Qt::Key>(key), modifiers);
    }
    void drag() {
        std::vector<QPoint> path{place()};
        for (int i = upTo(6); i > 0; --i) path.push_back(anywhere());
        auto hand = pointer();
        hand.drag(path, [&] {
            static constexpr int keys[]{Qt::Key_Delete, Qt::Key_Z, Qt::Key_3, Qt::Key_A};
            if (upTo(10) == 0) key(keys[upTo(4)]);
            if (upTo(200) == 0) VLCancelCapture();
        });
    }
    void begin() {
        endSession();
        dense_ = upTo(3) == 0;
        server_->setDisplays({dense_ ? vorla::test::denseScreen : vorla::test::firstScreen});
        start();
        const QSize all = panel()->size();
        if (upTo(8))
            pointer().drag(
                {{all.width() / 5, all.height() / 8}, {all.width() * 3 / 4, all.height() * 3 / 4}});
    }
    /// The session that was, if there was one, has ended once.
    void endSession() {
        VLCancelCapture();
        runPending();
        expectOver();
        EXPECT_LE(static_cast<size_t>(host_->cancelled) + host_->delivered.size(), 1U);
        host_->cancelled = 0;
        host_->delivered.clear();
    }
    void changeTheme() {
        const auto& names = VLCaptureThemeManager::nameArrayOfAvailableThemes();
        VLCaptureThemeManager::sharedInstance().changeThemeTo(
            names[static_cast<size_t>(upTo(static_cast<int>(names.size())))]);
    }
    void expectCanvasCurrent() {
        auto& editor = *controller().editViewController();
        QImage result = editor.imageEdited();
        runPending();
        if (!dense_) expectShown(result);
        // Another scale for once, and the canvas is drawn anew from nothing.
        QImage scrap(1, 1, QImage::Format_RGB32);
        QPainter painter(&scrap);
        canvas()->drawItems(painter, {}, 0.5);
        painter.end();
        EXPECT_EQ(vorla::test::largestDifference(editor.imageEdited(), result), 0);
    }
    /// The screens here keep no more than one pixel a point.
    void expectShown(QImage result) {
        QImage shown = panel()->screen()->grabWindow(panel()->winId()).toImage();
        const VLRect frame = canvas()->convertRectToWindow(canvas()->bounds());
        const QPoint corner(static_cast<int>(frame.x),
                            shown.height() - static_cast<int>(frame.maxY()));
        shown = shown.copy(QRect(corner, result.size())).convertedTo(QImage::Format_RGB32);
        for (QImage* image : {&shown, &result}) {
            QPainter painter(image);
            for (const QWidget* child : panel()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
                if (child != panel()->contentView() && child->isVisible())
                    painter.fillRect(child->geometry().translated(-corner), Qt::black);
            painter.fillRect(controller().sizeInfoView()->geometry().translated(-corner),
                             Qt::black);
        }
        EXPECT_EQ(vorla::test::largestDifference(shown, result), 0);
    }

    vorla::test::TemporaryFolder folder_;
    std::mt19937 random_;
    bool dense_ = false;
};

TEST_F(RandomHands, BreakNothing) {
    const char* seed = std::getenv("VORLA_SEED");
    const char* seconds = std::getenv("VORLA_SECONDS");
    const unsigned first = seed ? static_cast<unsigned>(std::atol(seed)) : 1U;
    std::printf("VORLA_SEED=%u\n", first);
    random_.seed(first);
    const std::vector<std::pair<int, std::function<void()>>> hands{
        {20, [&] { drag(); }},
        {12, [&] { pointer().click(place(), 1 + upTo(3)); }},
        {10, [&] { pointer().click(onAPanel()); }},
        {10, [&] { pointer().moveTo(upTo(2) ? onAPanel() : place()); }},
        {12, [&] { key(Qt::Key_1 + upTo(7)); }},
        {8, [&] { key(Qt::Key_A + upTo(26)); }},
        {4, [&] { key(upTo(2) ? Qt::Key_Delete : Qt::Key_Backspace); }},
        {8, [&] { key(Qt::Key_Z, Qt::ControlModifier); }},
        {6, [&] { key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); }},
        {3, [&] { QTest::qWait(upTo(80)); }},
        {2, [&] { changeTheme(); }},
        {1, [&] { key(Qt::Key_Return); }},
        {1, [&] { key(upTo(4) ? Qt::Key_Down : Qt::Key_Escape); }},
        {1, [&] { pointer().click(anywhere(), 1, upTo(4) ? Qt::MiddleButton : Qt::RightButton); }},
        {1, [&] { upTo(4) ? runPending() : server_->fireDisplaysChanged(); }},
    };
    std::vector<size_t> lots;
    for (size_t i = 0; i < hands.size(); ++i)
        lots.insert(lots.end(), static_cast<size_t>(hands[i].first), i);
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::seconds(seconds ? std::atoi(seconds) : 0);
    int step = 0;
    for (; step < 400 || std::chrono::steady_clock::now() < end; ++step) {
        if (!VLIsCapturing() || controllers().empty()) {
            ASSERT_NO_FATAL_FAILURE(begin());
        }
        hands[lots[static_cast<size_t>(upTo(static_cast<int>(lots.size())))]].second();
        if (step % 25 == 0 && VLIsCapturing() && !controllers().empty() && canvas())
            expectCanvasCurrent();
        ASSERT_FALSE(HasFailure()) << "seed " << first << ", step " << step;
    }
    std::printf("%d steps\n", step);
    endSession();
}

}  // namespace
