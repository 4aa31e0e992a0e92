#pragma once

#include <QPointer>
#include <QVariantAnimation>
#include <memory>

#include "platform/base/NotificationCenter.h"
#include "platform/view/PressMonitor.h"
#include "platform/view/VLOverlayPanel.h"
#include "toolbar/PanelShadow.h"
#include "toolbar/popover/ToolbarConfiguration.h"
#include "toolbar/popover/VLPopoverFontSizeView.h"
#include "toolbar/popover/VLPopoverLineColorView.h"
#include "toolbar/popover/VLPopoverLineWidthView.h"
#include "toolbar/popover/VLPopoverType.h"
#include "toolbar/popover/VLPopoverView.h"

class VLPopoverWindowControllerDelegate {
 public:
    virtual ~VLPopoverWindowControllerDelegate() = default;
    virtual void colorDidChange(const QColor& /*color*/) {}
    virtual void widthDidChange(uint64_t /*width*/) {}
    virtual void fontSizeDidChange(uint64_t /*fontSize*/) {}
};

/// The small panel against a tool's button with the tool's attributes. It stays open until it is
/// closed for good, moves with the panel that it hangs on, and remembers what was chosen for each
/// tool, in this capture and later ones. Points and rectangles are local to the screen. Main
/// thread.
class VLPopoverWindowController : public VLPopoverLineWidthViewDelegate,
                                  public VLPopoverLineColorViewDelegate,
                                  public VLPopoverFontSizeViewDelegate,
                                  public std::enable_shared_from_this<VLPopoverWindowController> {
 public:
    static std::shared_ptr<VLPopoverWindowController> create();
    ~VLPopoverWindowController() override;
    VLPopoverWindowController(const VLPopoverWindowController&) = delete;
    VLPopoverWindowController& operator=(const VLPopoverWindowController&) = delete;

    void setDelegate(std::weak_ptr<VLPopoverWindowControllerDelegate> delegate) {
        delegate_ = std::move(delegate);
    }
    [[nodiscard]] VLOverlayPanel* window() const { return window_; }
    [[nodiscard]] int64_t graphType() const { return graphType_; }
    [[nodiscard]] uint64_t popoverType() const { return popoverType_; }
    [[nodiscard]] bool isShowLogo() const { return showLogo_; }
    void setShowLogo(bool show) { showLogo_ = show; }
    /// Length of the opening animation in seconds.
    double alphaTransformAnimationStyleDuration = 0.05;

    /// Opens for a tool, with what was chosen for it last, which the delegate hears. `inView` is
    /// the content of the panel that the popover belongs to. Type 0 does nothing.
    void showPopoverAtArrowPoint(VLPoint point, int64_t graphType, uint64_t arrowDirection,
                                 VLView* inView);
    /// Opens for an item, with the item's attributes; the delegate hears nothing, and nothing is
    /// stored. `width` is the font size of an item of text.
    void showPopoverAtArrowPoint(VLPoint point, int64_t graphType, uint64_t width,
                                 const QColor& color, uint64_t arrowDirection, VLView* inView);
    /// Closes the popover and its menus for good.
    void forceClose();

    [[nodiscard]] VLSize windowSizeOfType(uint64_t popoverType) const;
    [[nodiscard]] VLPoint popoverPosition() const;
    [[nodiscard]] uint64_t defaultWidth() const;
    [[nodiscard]] QColor defaultColor() const;
    [[nodiscard]] uint64_t defaultFontSize() const;
    /// What was chosen for a tool last, with the pickers' defaults for what never was.
    [[nodiscard]] ToolAttributes getConfigurationsOfType(int64_t graphType) const;

    [[nodiscard]] VLPopoverView* popoverView() const { return popoverView_; }
    [[nodiscard]] VLPopoverLineWidthView* lineWidthView() const { return lineWidthView_; }
    [[nodiscard]] VLPopoverLineColorView* lineColorView() const { return lineColorView_; }
    [[nodiscard]] VLPopoverFontSizeView* fontSizeView() const { return fontSizeView_; }

    void widthDidChange(uint64_t width) override;
    void colorDidChange(const QColor& color) override;
    void fontSizeDidChange(uint64_t fontSize) override;

 private:
    enum class Configurations { Keep, Restore };
    enum class Opening { AtOnce, Animated };

    VLPopoverWindowController();
    void open(VLPoint point, int64_t graphType, uint64_t arrowDirection, VLView* inView,
              Configurations configurations, Opening opening);
    void setupWindow();
    void setupPickers();
    void dropPickers();
    void attachToView();
    void updateConfigurations();
    /// Width and font size are stored as the pickers show them.
    void saveConfigurationsOfType(int64_t graphType, const QColor& color);
    void configAppearanceAndLayout();
    void layoutSubViews();
    void handleChangeThemeNotification();
    void animateOpening();
    void showAnimationStep(double fraction);
    void endAnimation();

    std::weak_ptr<VLPopoverWindowControllerDelegate> delegate_;
    ToolbarConfiguration configuration_;
    bool showLogo_ = false;
    int64_t graphType_ = 0;
    uint64_t popoverType_ = VLPopoverTypeNone;
    uint64_t arrowDirection_ = VLPopoverArrowDirectionUp;
    VLPoint arrowPoint_;
    bool pickersForTern_ = false;
    QPointer<VLView> superView_;
    QPointer<VLOverlayPanel> window_;
    QPointer<PanelShadow> shadow_;
    QPointer<VLPopoverView> popoverView_;
    QPointer<VLPopoverLineWidthView> lineWidthView_;
    QPointer<VLPopoverLineColorView> lineColorView_;
    QPointer<VLPopoverFontSizeView> fontSizeView_;
    QPointer<VLImageView> snapshotView_;
    /// Of the screen that the views were last dressed for; 0 before.
    double dressedScale_ = 0.0;
    std::unique_ptr<vorla::PressMonitor> openingPress_;
    QVariantAnimation animation_;
    vorla::NotificationObservers observers_;
};
