#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/windowserver/WindowServer.h"
#include "platform/windowserver/X11Connection.h"

namespace vorla {

/// What the server says of one window on the screen; all rectangles are native pixels of the root.
struct X11Window {
    xcb_window_t top = XCB_NONE;     ///< the child of the root: the frame, or the window itself
    xcb_window_t client = XCB_NONE;  ///< the program's window; its number is the window's number
    PixelRect outer;                 ///< all of `top`, its border included
    PixelRect visible;               ///< decorations included, invisible margins not
    PixelRect content;               ///< the program's window alone
    int border = 0;                  ///< width of the border of `top`, pixels
    xcb_visualid_t visual = 0;       ///< of `top`
    bool hasAlpha = false;           ///< `top` is of a visual with an alpha channel
    int32_t pid = -1;
    int32_t layer = 0;
    std::string ownerName;
};

/// Layers, front to back as window managers stack them:
///
/// | Window                                             | Layer | As a snap target             |
/// |----------------------------------------------------|-------|------------------------------|
/// | unmanaged: menus, tips, panels that bypass the     | 101   | yes, unless the host's own   |
/// |   window manager                                   |       |                              |
/// | full-screen (state "fullscreen")                   | 24    | yes (not when it fills the   |
/// |                                                    |       |   screen, by the size rule)  |
/// | dock (type "dock", managed or not)                 | 20    | yes                          |
/// | above (state "above")                              | 3     | yes                          |
/// | normal, dialogue, utility and all others           | 0     | yes                          |
/// | below (state "below"): widgets kept on the desktop | -1    | no                           |
/// | desktop (type "desktop", managed or not)           | -20   | no                           |
///
/// The type counts before the state, and both before being unmanaged; "above" counts before
/// "below" should a window have both.
struct X11LayerFacts {
    bool isDesktop = false;
    bool isDock = false;
    bool isFullScreen = false;
    bool isAbove = false;
    bool isBelow = false;
    bool isUnmanaged = false;
};
int32_t layerOf(const X11LayerFacts& facts);

/// The part of a window that is seen: `outer` without invisible margins. A client that draws its
/// own frame names its margins (`gtkExtents`); else a window manager's frame may reach beyond the
/// client and the decorations that it names (`frameExtents`), as a place to grab the edges. Both
/// are left, right, top, bottom; empty when not given.
PixelRect visibleFrameOf(const PixelRect& outer, const PixelRect& content,
                         const std::vector<uint32_t>& gtkExtents,
                         const std::vector<uint32_t>& frameExtents);

/// Reads the windows of the connected server. Requests for all windows are under way at once, so
/// that a list takes a handful of round trips whatever its length; windows that vanish meanwhile
/// are left out. Main thread.
class X11WindowList {
 public:
    explicit X11WindowList(std::shared_ptr<X11Connection> connection);

    /// The windows that are seen on one of the displays, front to back. Nothing when the server
    /// does not answer.
    std::optional<std::vector<X11Window>> read(const std::vector<Display>& displays);

    /// One window by its number; nothing when it no longer exists or is not on the screen.
    std::optional<X11Window> readOne(xcb_window_t number);

    /// Owner of a client window as `ServerWindow::ownerName` has it; empty when unknown.
    std::string ownerNameOf(xcb_window_t client);

    /// Owner of the window that the window manager calls active, else of the one with the keyboard.
    std::string activeOwnerName();

    /// The child of the root that holds a window; none when the window no longer exists.
    xcb_window_t topLevelOf(xcb_window_t window);

 private:
    struct Candidate;
    /// The window manager's list of its clients; nothing when it publishes none.
    using ManagedWindows = std::optional<std::unordered_set<xcb_window_t>>;
    std::vector<Candidate> readTopLevels(const std::vector<xcb_window_t>& tops);
    void findClients(std::vector<Candidate>& candidates, const ManagedWindows& managed);
    void readProcessIds(std::vector<Candidate>& candidates);
    void readDetails(std::vector<Candidate>& candidates);
    uint32_t currentDesktop(xcb_get_property_cookie_t cookie);
    [[nodiscard]] bool isOnScreen(const Candidate& candidate, uint32_t desktop) const;

    std::shared_ptr<X11Connection> connection_;
    std::string hostName_;
};

}  // namespace vorla
