#include "toolbar/popover/VLPopoverMenuPanel.h"

#include <algorithm>

#include "platform/view/VLPanel.h"
#include "toolbar/PanelShadow.h"
#include "toolbar/popover/overlayOf.h"

namespace {

constexpr int menuLevel = 3;

}  // namespace

VLPopoverMenuPanel::VLPopoverMenuPanel(VLSize size)
    : VLOverlayPanel(VLRect::make({}, size), menuLevel) {
    setCursor(Qt::ArrowCursor);
    new PanelShadow(*this);
}

VLPopoverMenuPanel::~VLPopoverMenuPanel() = default;

void VLPopoverMenuPanel::popUpMenuAtLocation(VLPoint location, VLView& inView) {
    VLOverlayPanel* popover = overlayOf(&inView);
    if (!popover || !inView.panel()) return;
    prepareToOpen();
    superView_ = &inView;
    VLPoint origin = inView.convertPointToWindow(location);
    origin.y = std::max(0.0, std::min(origin.y, inView.panel()->extent().height - frame().height));
    setFrameOrigin(origin);
    if (isOpen()) return;
    popover->addChild(this);
    registerMouseDownEventMonitor();
}

void VLPopoverMenuPanel::cancelTracking() {
    unregisterMouseDownEventMonitor();
    if (hasParent()) {
        orderOut();
        removeFromParent();
    }
}

void VLPopoverMenuPanel::registerMouseDownEventMonitor() {
    mouseDownEventMonitor_ =
        std::make_unique<vorla::PressMonitor>([this](const vorla::PressMonitor::Press& press) {
            if (press.overlay != this && press.widget != superView_) cancelTracking();
        });
}

void VLPopoverMenuPanel::unregisterMouseDownEventMonitor() {
    mouseDownEventMonitor_.reset();
}
