#include "switch/VLSwitchMangager.h"

#include <gtest/gtest.h>
#include <vorla/VLStatistics.h>

#include <QGuiApplication>
#include <QScreen>
#include <fstream>

#include "platform/view/VLPanel.h"
#include "settings/StatisticDoor.h"
#include "tests/support/Pointer.h"
#include "tests/support/TestResources.h"

namespace {

using vorla::test::Pointer;
using vorla::test::waitUntil;

/// A bar on a screen of its own, and who hears of it.
class Switch : public testing::Test, public VLSwitchMangagerDelegate {
 protected:
    Switch() {
        vorla::setStatisticReceiver([this](int event) { counted_ += event == VLStatEventSwitch; });
        panel_->coverScreen(QGuiApplication::primaryScreen());
        panel_->makeKeyAndOrderFront();
    }
    ~Switch() override {
        manager_.reset();
        if (panel_) panel_->closePanel();
        vorla::setStatisticReceiver({});
    }
    void prepareToRecord() override { ++prepared_; }
    void changeToRecord() override { ++changed_; }

    void show() {
        manager_ = VLSwitchMangager::create({{panel_->extent(), [this] { return panel_.data(); }},
                                             {{800.0, 600.0}, [] { return nullptr; }}});
        manager_->setDelegate(std::shared_ptr<VLSwitchMangagerDelegate>(self_, this));
        vorla::test::runPending();
        manager_->show();
    }
    VLRect bar() const { return panel_->overlays().at(0)->frame(); }
    /// A point of the bar, from the panel's upper left.
    QPoint inBar(double x, double y) const {
        return {static_cast<int>(bar().x + x),
                static_cast<int>(panel_->extent().height - bar().y - y)};
    }
    void writeStrip(int width) {
        std::ofstream(resources_.theme() + "/strip.svg")
            << "<svg xmlns='http://www.w3.org/2000/svg' width='" << width
            << "' height='72'><rect width='" << width << "' height='72' fill='red'/></svg>";
        resources_.writeTheme(R"({"vlswitch": "strip.svg"})");
        VLCaptureThemeManager::sharedInstance().setupCurrentTheme();
    }

    vorla::test::TestResources resources_;
    QPointer<VLPanel> panel_ = new VLPanel(27);
    std::shared_ptr<int> self_ = std::make_shared<int>();
    std::shared_ptr<VLSwitchMangager> manager_;
    int counted_ = 0, prepared_ = 0, changed_ = 0;
};

TEST_F(Switch, EveryPressCountsAndTheFirstHandsOverOnceWhateverTheStrip) {
    for (const int width : {0, 100, 436 * 4}) {
        SCOPED_TRACE(width);
        writeStrip(width);
        counted_ = prepared_ = changed_ = 0;
        show();
        Pointer pointer(panel_);
        pointer.click(inBar(60, 36), 2);
        EXPECT_EQ(counted_, width < 436 ? 1 : 2) << "without a frame the bar goes at once";
        EXPECT_EQ(prepared_, 1);
        EXPECT_TRUE(waitUntil([this] { return changed_ > 0; }));
        vorla::test::runPending();
        EXPECT_EQ(changed_, 1);
        EXPECT_TRUE(panel_->overlays().at(0)->isHidden());
        manager_.reset();
        EXPECT_TRUE(waitUntil([this] { return panel_->overlays().empty(); }));
    }
}

TEST_F(Switch, APressOnTheSurfaceDuringTheSpriteTakesTheBarAndStillHandsOver) {
    writeStrip(436 * 6);
    show();
    Pointer(panel_).click(inBar(60, 36));
    manager_->hide();
    EXPECT_TRUE(panel_->overlays().at(0)->isHidden());
    EXPECT_EQ(changed_, 0);
    EXPECT_TRUE(waitUntil([this] { return changed_ == 1 && panel_->overlays().empty(); }));
}

TEST_F(Switch, APanelThatGoesDuringTheSpriteTakesTheHandOverWithIt) {
    writeStrip(436 * 2);
    show();
    Pointer(panel_).click(inBar(60, 36));
    panel_->closePanel();
    EXPECT_TRUE(waitUntil([this] { return !panel_; }));
    manager_->hide();
    EXPECT_EQ(changed_, 0);
}

TEST_F(Switch, IsPushedUpToHangAtTheEdgeAndPulledDownAgain) {
    show();
    const VLSize screen = panel_->extent();
    const VLRect down = bar();
    EXPECT_EQ(down, (VLRect{std::floor((screen.width - 436) / 2), screen.height - 112, 498, 72}));
    Pointer pointer(panel_);
    pointer.click(inBar(472, 36));
    EXPECT_TRUE(waitUntil([&] { return bar() == VLRect{down.x, screen.height - 52, 498, 72}; }));
    pointer.click(inBar(472, 30));
    EXPECT_TRUE(waitUntil([&] { return bar() == down; }));
    EXPECT_EQ(changed_, 0);
}

}  // namespace
