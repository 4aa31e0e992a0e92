#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "platform/base/raii.h"

namespace vorla {

/// Properties of windows that are read; the names are in the implementation, in this order.
enum class X11Atom : uint8_t {
    WmState,
    WmClientMachine,
    NetActiveWindow,
    NetClientList,
    NetCurrentDesktop,
    NetFrameExtents,
    NetWmDesktop,
    NetWmPid,
    NetWmState,
    NetWmStateAbove,
    NetWmStateBelow,
    NetWmStateFullscreen,
    NetWmStateHidden,
    NetWmWindowType,
    NetWmWindowTypeDesktop,
    NetWmWindowTypeDock,
    GtkFrameExtents,
    CompositorSelection,
    Count
};

/// How the pixels of a visual are to be read.
enum class PixelLayout : uint8_t {
    Unsupported,
    Rgb24,   ///< 0x??RRGGBB, the highest byte means nothing
    Rgb30,   ///< ten bits a channel, the two highest bits mean nothing
    Argb32,  ///< 0xAARRGGBB, premultiplied
};

/// What the server offers, asked for once. An event number is that of the extension's first event.
struct X11Extensions {
    bool sharedMemory = false;  ///< segments can be handed over as file descriptors
    bool composite = false;     ///< with named window pixmaps, damage and regions
    bool monitors = false;      ///< RandR with its list of monitors
    bool clientIds = false;     ///< process ids of clients
    uint8_t randrEvent = 0;
};

/// A connection of our own to the display server that $DISPLAY names, apart from the toolkit's: it
/// works before there is an application object, and its events are only ours.
///
/// When it breaks, every request returns nothing from then on; that is logged once. Main thread,
/// but for `get`, which is good for sending requests from any thread.
class X11Connection {
 public:
    /// Null, with a log line, when there is no server, or one whose root shows nothing (an X server
    /// inside another display system).
    static std::shared_ptr<X11Connection> open();
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    [[nodiscard]] xcb_connection_t* get() const { return connection_; }
    [[nodiscard]] xcb_screen_t* screen() const { return screen_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    [[nodiscard]] const X11Extensions& extensions() const { return extensions_; }
    [[nodiscard]] xcb_atom_t atom(X11Atom name) const { return atoms_[static_cast<size_t>(name)]; }
    /// Unsupported for an unknown visual.
    [[nodiscard]] PixelLayout layoutOf(xcb_visualid_t visual) const;

    /// False once the connection has broken, or the server has.
    bool isAlive();

    /// Waits for the answer to a request, sending what is queued. Null for an error. Every cookie
    /// has to be claimed by this, in any order.
    template <typename Reply, typename Cookie>
    MallocPtr<Reply> reply(Reply* (*claim)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                           Cookie cookie) {
        return MallocPtr<Reply>(claim(connection_, cookie, nullptr));
    }

    /// Whether a request sent by its "checked" form was carried out.
    bool succeeded(xcb_void_cookie_t checked);

    /// Asks for up to `words` 32-bit words of a property, of any type.
    [[nodiscard]] xcb_get_property_cookie_t askProperty(xcb_window_t window, xcb_atom_t property,
                                                        uint32_t words = 64) const {
        return xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0,
                                words);
    }
    MallocPtr<xcb_get_property_reply_t> property(xcb_get_property_cookie_t cookie) {
        return reply(&xcb_get_property_reply, cookie);
    }

 private:
    X11Connection(xcb_connection_t* connection, xcb_screen_t* screen);
    bool isNested();
    void readAtoms(int screenNumber);
    void readExtensions();
    void readLayouts();

    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
    X11Extensions extensions_;
    std::array<xcb_atom_t, static_cast<size_t>(X11Atom::Count)> atoms_{};
    std::unordered_map<xcb_visualid_t, PixelLayout> layouts_;
    bool loggedLoss_ = false;
};

}  // namespace vorla
