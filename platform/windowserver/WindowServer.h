#pragma once

#include <QImage>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/ArrivingRows.h"
#include "platform/base/geometry.h"

enum VLCaptureError : int;

namespace vorla {

/// A rectangle in the window server's native pixels, origin at the upper left, y downward.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// One display.
///
/// Points: every display has a global point space of its own, which is the native desktop divided
/// by this display's scale, with y turned upward from the lower edge of the first display. Inside
/// one such space differences are right; points of two displays' spaces are never mixed.
/// Subtracting `frame`'s origin gives coordinates local to the display.
struct Display {
    uint32_t displayID = 0;  ///< never 0; stays the same while the display stays connected
    std::string name;        ///< the output's or monitor's name
    PixelRect nativeFrame;
    double scale = 1.0;  ///< device pixels per point
    VLRect frame;        ///< in the display's own global point space

    friend bool operator==(const Display&, const Display&) = default;
};

/// One window on the screen.
struct ServerWindow {
    uint32_t number = 0;
    int32_t pid = -1;  ///< -1 when the server cannot tell
    /// Layers as the selection rules use them: negative for the desktop and what lies below normal
    /// windows' floor, 0 normal, up to 25 for what shells put above (docks, full-screen windows),
    /// more for unmanaged windows such as menus and panels. The table is in the implementation.
    int32_t layer = 0;
    std::string ownerName;  ///< name of the owning program
    VLRect bounds;          ///< visible frame, decorations included, invisible margins not
};

/// What a picture of one window holds.
enum class WindowPicture {
    Frame,            ///< the visible frame: decorations, but no shadow or other invisible margin
    FrameWithShadow,  ///< the same with the margins around it in which the shadow is drawn
    Content,          ///< the client area alone, without the window manager's decorations
};

/// A picture whose pixels the server may still be writing.
struct ArrivingImage {
    QImage image;                        ///< null when it could not be had
    std::shared_ptr<ArrivingRows> rows;  ///< null when all of them are there
};

/// What the desktop's window server offers: displays, windows, pictures, and who is active.
///
/// Calls are made on the main thread. All pictures are in device pixels, with the device pixel
/// ratio set to the display's scale, of format RGB32 (opaque) or ARGB32_Premultiplied; the highest
/// byte of an RGB32 picture of a display is whatever the server left there, so it must not be taken
/// for alpha (as copying the bytes into a format with alpha would). A call that the server refuses,
/// or whose window or display no longer exists, returns the empty value; nothing throws.
class WindowServer {
 public:
    virtual ~WindowServer() = default;

    /// The display server that the environment names, connected; null (with a log line) when there
    /// is none or it is of a kind that is not served.
    static std::unique_ptr<WindowServer> connect();

    /// The process's window server: made by the first call (null, and tried again by the next call,
    /// when `connect` fails), and made anew when the former one has lost its connection. Tests put
    /// another one in its place; null removes it.
    static std::shared_ptr<WindowServer> shared();
    static void setShared(std::shared_ptr<WindowServer> server);

    /// False once the connection to the display server has broken: every other call returns the
    /// empty value from then on.
    virtual bool isConnected() { return true; }

    /// Why no pictures can be had of this server's screens; the details go to the log.
    virtual VLCaptureError obstacle();

    /// In the desktop's order, the first one first.
    virtual std::vector<Display> displays() = 0;

    /// The on-screen windows, front to back, with bounds in the named display's global point space;
    /// windows that lie on other displays are listed too. Minimised windows, those of other
    /// workspaces and those wholly off every display are left out. Nothing when the server had no
    /// list.
    virtual std::optional<std::vector<ServerWindow>> windows(uint32_t displayID) = 0;

    /// The pixels of a rectangle of a display as it looks now. `rect` is local to the display, in
    /// points with the origin at the lower left; it is made whole in device pixels outwards, and
    /// cut to the display. A null image for an empty result.
    virtual QImage imageOfDisplay(uint32_t displayID, VLRect rect) = 0;

    /// The same of a whole display, without waiting for all of it: what can be done with the first
    /// rows is done while the server writes the last. Every row shows the moment of the call.
    virtual ArrivingImage arrivingImageOfDisplay(uint32_t displayID) = 0;

    /// A window's own picture, also where other windows (ours among them) cover it. Where the
    /// server cannot give the covered part, because the owner does not answer, that part shows what
    /// `fallback` shows there: a picture of the whole display taken by `imageOfDisplay` before
    /// anything of ours covered it (null for none). May wait for the owner, a sixth of a second at
    /// the most. A null image for a window that no longer exists.
    virtual QImage imageOfWindow(uint32_t displayID, uint32_t number, WindowPicture picture,
                                 const QImage& fallback) = 0;

    /// Alpha, 0 to 1, of the pixel in the middle of the window's own picture; 1 for windows without
    /// an alpha channel and for those that no longer exist. Cheap: no more than one pixel is read.
    virtual double alphaAtCentre(uint32_t number) = 0;

    /// Asks the server to keep the contents of the session's windows, so that they can be had while
    /// panels cover them: to be called after the grabs and before the panels of a session are
    /// shown. `releaseWindows` ends it; both may be repeated.
    virtual void keepWindows() = 0;
    virtual void releaseWindows() = 0;

    /// Waits until the server has done all that it was asked for. Until then `meanwhile` is called
    /// again and again, as long as it returns true.
    virtual void finish(const std::function<bool()>& meanwhile);

    /// Where the pointer is, local to the display: the middle of its pixel, which may lie outside.
    /// Nothing when the server does not tell.
    virtual std::optional<VLPoint> pointerLocation(uint32_t displayID);

    /// Name of the program that has the user's attention, as in `ServerWindow::ownerName`; empty
    /// when there is none.
    virtual std::string activeApplicationName() = 0;

    /// Makes what a session will need ready (shared memory for the grabs faulted in, extensions
    /// asked for), so that the first session is as fast as later ones.
    virtual void prepare() = 0;

    /// Called on the main thread after a display was added, removed, moved or resized.
    std::function<void()> onDisplaysChanged;
    /// Called on the main thread after another workspace became the active one.
    std::function<void()> onActiveSpaceChanged;
};

}  // namespace vorla
