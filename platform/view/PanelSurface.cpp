#include "platform/view/PanelSurface.h"

#include "platform/view/VLPanel.h"
#include "platform/view/X11PanelSurface.h"

namespace vorla {
namespace {

/// Leaves everything to the toolkit.
class PlainPanelSurface : public PanelSurface {
 public:
    void begin(std::function<void()> /*landedOnTop*/) override {}
    bool keepPixels(VLPanel& /*panel*/) override { return false; }
    void dropPixels(VLPanel& /*panel*/) override {}
    void coverScreen(VLPanel& /*panel*/, const QRect& /*nativeFrame*/) override {}
    void becomeKey(VLPanel& panel) override { panel.activateWindow(); }
    void wasPainted(VLPanel& /*panel*/) override {}
    void stayOnTop(const std::vector<VLPanel*>& panels, Helpers /*helpers*/) override {
        for (VLPanel* panel : panels) panel->raise();
    }
    Keyboard keyboard(const std::vector<VLPanel*>& /*panels*/) override {
        return Keyboard::Unknown;
    }
    std::optional<QPointF> pointer(const VLPanel& /*panel*/) override { return std::nullopt; }
    void release() override {}
};

}  // namespace

std::unique_ptr<PanelSurface> PanelSurface::create() {
    if (auto x11 = X11PanelSurface::create()) return x11;
    return std::make_unique<PlainPanelSurface>();
}

}  // namespace vorla
