#include "switch/VLSwitchMangager.h"

#include <cmath>
#include <utility>

#include "platform/base/MainQueue.h"
#include "platform/base/VLLog.h"

namespace {

constexpr VLSize panelSize{498.0, 72.0};
/// Of the panel; the rest is the overhang of the button that pushes it up.
constexpr double centredWidth = 436.0;
constexpr double distanceFromTop = 40.0;

}  // namespace

std::shared_ptr<VLSwitchMangager> VLSwitchMangager::create(const std::vector<Screen>& screens) {
    std::shared_ptr<VLSwitchMangager> manager(new VLSwitchMangager);
    for (const Screen& screen : screens) {
        const VLPoint origin{std::floor((screen.size.width - centredWidth) / 2.0),
                             std::floor(screen.size.height - distanceFromTop - panelSize.height)};
        manager->setupWindowsWithFrame(VLRect::make(origin, panelSize), screen);
    }
    return manager;
}

VLSwitchMangager::~VLSwitchMangager() {
    hide();
}

void VLSwitchMangager::setupWindowsWithFrame(const VLRect& frame, const Screen& screen) {
    vorla::MainQueue::post([manager = weak_from_this(), frame, screen] {
        const auto self = manager.lock();
        if (!self) return;
        VLSwitchPanel* panel = VLSwitchPanel::create(frame, screen.panel());
        if (!panel) return;
        panel->setPanelDelegate(self);
        self->panels_.emplace_back(panel);
    });
}

void VLSwitchMangager::show() {
    for (const auto& panel : panels_)
        if (panel) panel->showWithAnimation(false);
}

void VLSwitchMangager::hide() {
    for (const auto& panel : std::exchange(panels_, {}))
        if (panel) panel->hideAndClose();
}

void VLSwitchMangager::prepareToRecord() {
    VLLog("<VLSwitchMangager> %s", __func__);
    if (const auto delegate = delegate_.lock()) delegate->prepareToRecord();
}

void VLSwitchMangager::changeToRecord() {
    // Bars of two screens may both have been pressed.
    if (std::exchange(changed_, true)) return;
    for (const auto& panel : panels_)
        if (panel) panel->orderOut();
    VLLog("<VLSwitchMangager> %s", __func__);
    if (const auto delegate = delegate_.lock()) delegate->changeToRecord();
}
