#pragma once

#include <xcb/damage.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <QImage>
#include <QRegion>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/windowserver/WindowServer.h"
#include "platform/windowserver/X11Connection.h"
#include "platform/windowserver/X11WindowList.h"

namespace vorla {

/// How much of a window the windows in front of it leave to be seen.
enum class Coverage {
    Uncovered,  ///< all of it, and all on one display: a picture of the display holds it
    Partly,     ///< a part, or it reaches beyond a display
    Hidden,     ///< nothing
};

/// For each window of a list, front to back. Windows count as opaque rectangles.
std::vector<Coverage> coverageOf(const std::vector<X11Window>& windows,
                                 const std::vector<Display>& displays);

/// Pictures of single windows, also where others cover them.
///
/// The server keeps a window's content only when it is redirected: by a compositor, which makes all
/// this easy, for windows with an alpha channel, or at our wish. At that moment it has the part
/// that is seen, and asks the owner to draw the rest; the damage that arrives shows how far the
/// owner has come. A redirected window costs the server memory and a copy, so only what needs it is
/// redirected: windows that nothing covers are had from the picture of the display. Main thread.
class X11WindowPictures {
 public:
    /// A picture of the whole display, with the display's place.
    struct Fallback {
        const QImage& image;
        PixelRect frame;
    };

    explicit X11WindowPictures(std::shared_ptr<X11Connection> connection);
    ~X11WindowPictures();
    X11WindowPictures(const X11WindowPictures&) = delete;
    X11WindowPictures& operator=(const X11WindowPictures&) = delete;

    /// Has the server touch as much memory as `keep` will need: finding it takes longer than the
    /// copying.
    void prepare();

    /// A compositor is looked for beside other questions, before there is anything to keep.
    [[nodiscard]] xcb_get_selection_owner_cookie_t askForCompositor() const;
    void hearOfCompositor(xcb_get_selection_owner_cookie_t asked);

    /// Begins to keep the contents of the windows of a list (front to back, as the screen shows it
    /// now) that are partly covered: only snap targets, and no more than `keptPixels` altogether,
    /// because the panels that follow wait for the server to copy them. The others are asked for
    /// when their picture is.
    void keep(const std::vector<X11Window>& windows, const std::vector<Display>& displays);
    void release();

    /// The window's picture, without a device pixel ratio. `listed` is the window as the list had
    /// it when `keep` was called (absent when it was not in it), `now` as it is. Waits up to
    /// `patience` for an owner that has yet to draw.
    QImage picture(const std::optional<X11Window>& listed, const X11Window& now,
                   WindowPicture picture, const Fallback& fallback);

    /// Of a pixel at native coordinates of the root; 1 when the server does not say.
    double alphaAt(const X11Window& window, int x, int y);

    static constexpr int64_t keptPixels = 4'000'000;
    static constexpr std::chrono::milliseconds patience{150};

 private:
    using Clock = std::chrono::steady_clock;

    /// A redirected window. The damage came at three times: what was seen before redirection, what
    /// the server itself filled at that moment, what the owner has drawn since.
    struct Kept {
        xcb_damage_damage_t damage = XCB_NONE;
        xcb_xfixes_region_t seen = XCB_NONE;
        xcb_xfixes_region_t filled = XCB_NONE;
        xcb_xfixes_region_t drawn = XCB_NONE;
        Clock::time_point since;
        QRegion seenRegion, filledRegion, drawnRegion;  ///< in the window's own coordinates
        bool isRead = false;
    };

    Kept& redirect(const X11Window& window);
    void unredirect(xcb_window_t top, const Kept& kept);
    QRegion fetch(xcb_xfixes_region_t region);
    QRegion waitFor(Kept& kept, const X11Window& window, const QRect& wanted);
    QImage readPixmap(const X11Window& window, const PixelRect& rect, bool* isKept);

    std::shared_ptr<X11Connection> connection_;
    std::unordered_map<xcb_window_t, Kept> kept_;
    std::unordered_map<xcb_window_t, Coverage> coverage_;  ///< by child of the root
    bool isKeeping_ = false;
    bool hasCompositor_ = false;
};

}  // namespace vorla
