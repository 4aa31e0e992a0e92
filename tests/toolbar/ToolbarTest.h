#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "editor/VLEditNotifications.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/UserDefaults.h"
#include "platform/view/VLPanel.h"
#include "settings/StatisticDoor.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/OffscreenScreens.h"
#include "tests/support/Pointer.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/VLToolbarWindowController.h"

/// Notes what the editor would be asked for.
class EditorStandIn : public VLToolbarWindowControllerDelegate {
 public:
    std::vector<std::string> heard;

    void graphTypeDidChange(int64_t type) override { note("tool " + std::to_string(type)); }
    void colorDidChange(const QColor& color) override {
        note("colour " + color.name().toStdString());
    }
    void widthDidChange(uint64_t width) override { note("width " + std::to_string(width)); }
    void undo() override { note("undo"); }

    std::vector<std::string> take() { return std::exchange(heard, {}); }

 private:
    void note(const std::string& what) { heard.push_back(what); }
};

/// A toolbar on a panel of 800 x 600 points, with its lower left corner at (100, 300), in one of
/// the framework's own themes.
class Toolbar : public testing::Test {
 protected:
    explicit Toolbar(const char* theme = "default") {
        forgetConfiguration();
        VLCaptureThemeManager::sharedInstance().changeThemeTo(theme);
        vorla::setStatisticReceiver([this](int event) { events_.push_back(event); });
        for (const char* name :
             {NotificationEditDidBegin, NotificationCaptureDidFinish, NotificationCaptureDidCancel})
            observers_.observe(name, [this](const vorla::Notification& n) {
                posted_.push_back(n.name + (n.objectOr(false) ? " true" : ""));
            });
        panel_->setScreen(vorla::test::screenOfScale(1.0));
        panel_->setGeometry(0, 0, 800, 600);
        panel_->setContentView(new VLView({0, 0, 800, 600}));
        panel_->makeKeyAndOrderFront();
        toolbar_ = VLToolbarWindowController::create({100, 300});
        toolbar_->setDelegate(editor_);
        panel_->addChild(toolbar_->window());
        pointer_ = vorla::test::Pointer(panel_);
        vorla::test::runPending();
    }
    ~Toolbar() override {
        toolbar_.reset();
        if (panel_) panel_->closePanel();
        vorla::test::runPending();
        vorla::setStatisticReceiver({});
        VLCaptureThemeManager::sharedInstance().changeThemeTo("default");
        forgetConfiguration();
    }

    static void forgetConfiguration() {
        auto& defaults = vorla::UserDefaults::standardUserDefaults();
        for (int type = 0; type <= 7; ++type)
            for (const char* key : {"VLToolbarConfigurationWithGraphType_",
                                    "VLToolbarConfigurationForTernWithGraphType_"})
                defaults.removeObjectForKey(key + std::to_string(type));
        defaults.synchronize();
    }
    [[nodiscard]] VLToolbarView& view() const { return *toolbar_->toolbarView(); }
    [[nodiscard]] VLPopoverWindowController& popover() const {
        return *toolbar_->popoverWindowController();
    }
    /// Where the pointer hits the middle of a view.
    [[nodiscard]] static QPoint middleOf(const VLView& view) {
        const VLRect place = view.convertRectToWindow(view.bounds());
        return {static_cast<int>(place.midX()), static_cast<int>(600 - place.midY())};
    }
    void clickTool(int64_t type) { pointer_.click(middleOf(*view().graphButtonByGraphType(type))); }
    void clickFunction(int64_t type) {
        pointer_.click(middleOf(*view().functionButtonByGraphType(type)));
    }
    void finishAnimation() {
        vorla::test::waitUntil([this] { return popover().popoverView()->isVisible(); });
    }
    void focusItem(int64_t type, double width, const VLNotificationColor& color) {
        vorla::NotificationCenter::defaultCenter().post(
            VLNotificationFocusItemDidChange,
            VLNotificationDictionary{{VLFocusItemGraphType, type},
                                     {VLFocusItemLineWidth, width},
                                     {VLFocusItemLineColor, color}});
    }

    vorla::test::LogRecorder log_;
    std::vector<int> events_;
    std::vector<std::string> posted_;
    vorla::NotificationObservers observers_;
    std::shared_ptr<EditorStandIn> editor_ = std::make_shared<EditorStandIn>();
    QPointer<VLPanel> panel_ = new VLPanel(27);
    std::shared_ptr<VLToolbarWindowController> toolbar_;
    vorla::test::Pointer pointer_{nullptr};
};
