#pragma once

#include <QPointer>
#include <memory>

#include "platform/view/PressMonitor.h"
#include "platform/view/VLOverlayPanel.h"

/// A drop-down panel of a picker: open or closed. It closes when its picker says so, and at a press
/// anywhere else; that press still does what it would have done. It dies with the popover that it
/// opened from.
class VLPopoverMenuPanel : public VLOverlayPanel {
 public:
    explicit VLPopoverMenuPanel(VLSize size = {});
    ~VLPopoverMenuPanel() override;

    /// Opens with its lower left corner at a point of the view, moved down as far as it would stick
    /// out at the screen's top.
    void popUpMenuAtLocation(VLPoint location, VLView& inView);
    /// Closes. Does nothing on a closed menu.
    void cancelTracking();
    [[nodiscard]] bool isOpen() const { return hasParent() && !isHidden(); }

 protected:
    /// Called just before the menu opens.
    virtual void prepareToOpen() {}

 private:
    void registerMouseDownEventMonitor();
    void unregisterMouseDownEventMonitor();

    QPointer<VLView> superView_;
    std::unique_ptr<vorla::PressMonitor> mouseDownEventMonitor_;
};
