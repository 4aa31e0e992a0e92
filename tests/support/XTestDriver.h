#pragma once

#include <xcb/xcb.h>

#include <QImage>
#include <QPoint>
#include <QRect>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorla::test {

/// A user's hands and eyes on the X server of $DISPLAY, over a connection of its own: real pointer
/// and key events, and what the server itself says of pixels, focus, grabs and resources. All
/// coordinates are native pixels of the root window, y downward. Every operation has been carried
/// out by the server when it returns.
class XTestDriver {
 public:
    /// Null when there is no server, or one without the XTEST extension.
    static std::unique_ptr<XTestDriver> create();
    ~XTestDriver();
    XTestDriver(const XTestDriver&) = delete;
    XTestDriver& operator=(const XTestDriver&) = delete;

    void moveTo(int x, int y);
    void press(int button = 1);
    void release(int button = 1);
    void click(int x, int y, int button = 1);
    /// Moves to `from`, presses, moves in `steps` steps to `to`, releases.
    void drag(QPoint from, QPoint to, int steps = 8);

    /// By keysym name: a single printable character, or Escape, Return, Tab, Delete, BackSpace,
    /// space, Left, Right, Up, Down, Home, End, Page_Up, Page_Down, Shift_L, Control_L, Alt_L.
    /// False for a name or key that is not known. `key` presses Shift where the character needs it.
    bool keyDown(std::string_view name);
    bool keyUp(std::string_view name);
    bool key(std::string_view name);
    void sync();

    /// Pixels of the root window through a plain GetImage, as RGB32 with the alpha byte set (depths
    /// 24 and 30). Null when the rectangle is not wholly on the screen.
    QImage rootPixels(QRect rect);
    QImage rootPixels();
    [[nodiscard]] QSize rootSize() const;

    QPoint pointer();
    /// Whether another client holds the pointer or keyboard (tried, and let go at once).
    bool pointerIsGrabbed();
    bool keyboardIsGrabbed();
    xcb_window_t focus();
    void setFocus(xcb_window_t window);
    /// The cursor as it looks now; null without XFIXES.
    QImage cursorImage();

    /// Sends the window manager a message about a window (or the root), by the name of its type.
    void sendToManager(xcb_window_t window, std::string_view type, uint32_t data0,
                       uint32_t data1 = 0);
    void activate(xcb_window_t window) { sendToManager(window, "_NET_ACTIVE_WINDOW", 2); }
    void minimise(xcb_window_t window) { sendToManager(window, "WM_CHANGE_STATE", 3); }
    void switchWorkspace(uint32_t index) {
        sendToManager(screen_->root, "_NET_CURRENT_DESKTOP", index);
    }
    void moveWindow(xcb_window_t window, int x, int y);
    void unmap(xcb_window_t window);
    /// The window's state as the server has it: mapped and viewable.
    bool isViewable(xcb_window_t window);

    /// Place of a window's content on the root; an empty rectangle when it no longer exists.
    QRect contentRect(xcb_window_t window);
    /// 32-bit words of a property; empty when absent.
    std::vector<uint32_t> propertyWords(xcb_window_t window, std::string_view name);

    /// The base identifiers of all connections of a process, and the end of one of them.
    std::vector<uint32_t> clientsOfProcess(int pid);
    void killClient(uint32_t client);
    /// Number of X resources by type name of all connections of a process.
    std::map<std::string, uint32_t> resourcesOfProcess(int pid);
    /// Bytes of pixmaps that the process's connections hold in the server.
    uint64_t pixmapBytesOfProcess(int pid);

    [[nodiscard]] xcb_connection_t* connection() const { return connection_; }
    [[nodiscard]] xcb_screen_t* screen() const { return screen_; }
    xcb_atom_t atom(std::string_view name);

 private:
    XTestDriver(xcb_connection_t* connection, xcb_screen_t* screen);
    void fake(uint8_t type, uint8_t detail, int x = 0, int y = 0);
    /// Keycode and whether Shift is needed; keycode 0 when the keyboard has no such key.
    std::pair<xcb_keycode_t, bool> keycodeOf(std::string_view name);

    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
};

}  // namespace vorla::test
