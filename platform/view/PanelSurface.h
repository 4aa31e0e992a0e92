#pragma once

#include <QPointF>
#include <QRect>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class VLPanel;

namespace vorla {

/// What a window system has to do for the panels of a session: let them cover screens, have the
/// keyboard, stay on top, and give everything back. One serves all panels. Main thread.
class PanelSurface {
 public:
    /// Of the platform that the toolkit runs on: X11's own, else one that leaves all to the
    /// toolkit.
    static std::unique_ptr<PanelSurface> create();
    virtual ~PanelSurface() = default;

    /// Begins a session: notes who has the keyboard, and calls back on the main thread whenever
    /// something foreign may have landed on top of a panel.
    virtual void begin(std::function<void()> landedOnTop) = 0;
    /// Has the server keep a panel's pixels, also while no screen shows them, until `dropPixels`.
    /// False where it cannot.
    virtual bool keepPixels(VLPanel& panel) = 0;
    virtual void dropPixels(VLPanel& panel) = 0;

    /// Puts a shown panel at its exact place: a rectangle in native pixels.
    virtual void coverScreen(VLPanel& panel, const QRect& nativeFrame) = 0;
    virtual void becomeKey(VLPanel& panel) = 0;
    /// A panel just shown has been painted without waiting for its exposure: what was said of that
    /// up to now asks for no further painting.
    virtual void wasPainted(VLPanel& panel) = 0;

    enum class Helpers {
        Cover,  ///< every other window comes to lie below the panels
        Spare,  ///< but for unmanaged windows of other programs, such as those of input methods
    };
    /// Puts the panels, lowest first, above all other windows, and the program's own menus and
    /// tool-tips above them.
    virtual void stayOnTop(const std::vector<VLPanel*>& panels, Helpers helpers) = 0;

    enum class Keyboard {
        Kept,     ///< no other window has it, for all that the toolkit thinks
        Stolen,   ///< another program took it
        Given,    ///< the user gave it away: by a key of the window manager's, or by a press
        Unknown,  ///< the platform does not say
    };
    /// What has become of the keyboard that the toolkit no longer sees with a panel.
    virtual Keyboard keyboard(const std::vector<VLPanel*>& panels) = 0;

    /// The pointer in a panel's points, y downward, to the pixel; nothing where it cannot be had.
    virtual std::optional<QPointF> pointer(const VLPanel& panel) = 0;

    /// Ends the session: the keyboard goes back to who had it.
    virtual void release() = 0;
};

}  // namespace vorla
