#pragma once

#include <xcb/xcb.h>

#include <map>
#include <memory>

#include "platform/view/PanelSurface.h"

namespace vorla {

/// Panels as unmanaged windows of an X server, over the toolkit's own connection.
class X11PanelSurface : public PanelSurface {
 public:
    /// Null where the toolkit does not run on an X server.
    static std::unique_ptr<X11PanelSurface> create();
    ~X11PanelSurface() override;

    void begin(std::function<void()> landedOnTop) override;
    bool keepPixels(VLPanel& panel) override;
    void dropPixels(VLPanel& panel) override;
    void coverScreen(VLPanel& panel, const QRect& nativeFrame) override;
    void becomeKey(VLPanel& panel) override;
    void wasPainted(VLPanel& panel) override;
    void stayOnTop(const std::vector<VLPanel*>& panels, Helpers helpers) override;
    Keyboard keyboard(const std::vector<VLPanel*>& panels) override;
    std::optional<QPointF> pointer(const VLPanel& panel) override;
    void release() override;

 private:
    class Watch;
    explicit X11PanelSurface(xcb_connection_t* connection);
    [[nodiscard]] bool isAlive() const;
    [[nodiscard]] xcb_window_t root() const;
    /// Viewable windows of other programs that lie above the lowest panel, lowest first.
    struct Foreign {
        xcb_window_t window;
        bool helper;
    };
    [[nodiscard]] std::vector<Foreign> foreignAbove(const std::vector<VLPanel*>& panels) const;

    xcb_connection_t* connection_;
    xcb_window_t focusBefore_ = XCB_NONE;
    uint8_t revertBefore_ = 0;
    /// The last request before which a panel's exposure has been answered.
    std::map<xcb_window_t, uint32_t> answered_;
    std::unique_ptr<Watch> watch_;
};

}  // namespace vorla
