#pragma once

#include <QPointer>
#include <QVariantAnimation>
#include <memory>

#include "platform/view/VLOverlayPanel.h"
#include "switch/VLSwitchButton.h"

class VLPanel;

class VLSwitchPanelDelegate {
 public:
    virtual ~VLSwitchPanelDelegate() = default;
    virtual void prepareToRecord() {}
    virtual void changeToRecord() {}
};

/// The bar of one screen that offers the recorder: the switch button, a button that pushes the bar
/// up out of the way, and one at the screen's edge that pulls it down again. A layer at level 28
/// inside the screen's panel, local to the screen; it can be dragged by its background. Main
/// thread.
class VLSwitchPanel : public VLOverlayPanel, private VLSwitchButtonDelegate {
 public:
    /// `frame` is the bar's place while it is down; its top edge lies 40 points below the screen's.
    /// Null without a screen. The panel is hidden until it is shown.
    static VLSwitchPanel* create(const VLRect& frame, VLPanel* screen);

    void setPanelDelegate(std::weak_ptr<VLSwitchPanelDelegate> delegate) {
        panelDelegate_ = std::move(delegate);
    }

    /// Shows the bar in its place, at once or gliding down.
    void showWithAnimation(bool animated);
    void pullUpAction();
    void pullDownAction();
    /// Takes the bar off the screen. One whose button was pressed still hands the session over when
    /// its animation is over, and goes then.
    void hideAndClose();

 private:
    VLSwitchPanel(const VLRect& frame, VLPanel* screen);
    void setupContent();
    void animate(const VLRect& from, const VLRect& to, std::function<void()> ended);
    void animationDidEnd();
    void prepareToRecord() override;
    void changeToRecord() override;

    std::weak_ptr<VLSwitchPanelDelegate> panelDelegate_;
    QPointer<VLPanel> screen_;
    VLRect showFrame_;
    VLRect hideFrame_;
    VLView* showContentView_ = nullptr;
    VLButton* pullDownButton_ = nullptr;
    VLSwitchButton* switchButton_ = nullptr;
    QVariantAnimation animation_;
    bool closing_ = false;
};
