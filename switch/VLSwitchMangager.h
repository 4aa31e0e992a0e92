#pragma once

#include <QPointer>
#include <functional>
#include <memory>
#include <vector>

#include "platform/base/geometry.h"
#include "switch/VLSwitchPanel.h"

class VLSwitchMangagerDelegate {
 public:
    virtual ~VLSwitchMangagerDelegate() = default;
    /// The user has turned to the recorder; a short animation plays.
    virtual void prepareToRecord() {}
    /// The animation is over: the session is to be handed over. Comes once.
    virtual void changeToRecord() {}
};

/// The offer of the recorder on all screens: one bar each, just under the top edge. Main thread.
class VLSwitchMangager : public VLSwitchPanelDelegate,
                         public std::enable_shared_from_this<VLSwitchMangager> {
 public:
    /// A screen's size in points, and where its panel is found once it was made.
    struct Screen {
        VLSize size;
        std::function<VLPanel*()> panel;
    };

    /// The bars are made from the main queue, after what has been queued there so far.
    static std::shared_ptr<VLSwitchMangager> create(const std::vector<Screen>& screens);
    ~VLSwitchMangager() override;

    void setDelegate(std::weak_ptr<VLSwitchMangagerDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    /// Shows the bars that have been made.
    void show();
    /// Takes the bars away for good.
    void hide();

    void prepareToRecord() override;
    void changeToRecord() override;

 private:
    VLSwitchMangager() = default;
    void setupWindowsWithFrame(const VLRect& frame, const Screen& screen);

    std::weak_ptr<VLSwitchMangagerDelegate> delegate_;
    std::vector<QPointer<VLSwitchPanel>> panels_;
    bool changed_ = false;
};
