#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/windowserver/WindowServer.h"
#include "platform/windowserver/X11Connection.h"

namespace vorla {

/// A monitor as the server has it, or a screen as the toolkit has it.
struct NativeMonitor {
    std::string name;
    PixelRect frame;     ///< native pixels
    double scale = 1.0;  ///< of the toolkit's screen; 1 for a monitor

    friend bool operator==(const NativeMonitor&, const NativeMonitor&) = default;
};

/// Puts the monitors in the order of the toolkit's screens and gives them the screens' scale. A
/// screen's place is its monitor's native origin, but its size is rounded to whole points: so a
/// monitor at the same origin is looked for, of the same name where several are there, then one of
/// the same name. A screen without any monitor counts with its own rounded frame. Without screens
/// the monitors themselves are the answer.
std::vector<NativeMonitor> matchMonitors(const std::vector<NativeMonitor>& monitors,
                                         const std::vector<NativeMonitor>& screens);

/// Lays out each monitor in a point space of its own (see `Display`).
std::vector<Display> layOutDisplays(const std::vector<NativeMonitor>& monitors);

/// A native rectangle in the global point space of a display. `first` is the first display, whose
/// lower edge is where y begins.
VLRect pointsFromNative(const PixelRect& rect, const Display& display, const Display& first);

/// A rectangle in points, local to the display, as native pixels of the root window: made whole
/// outwards (an edge within a thousandth of a pixel of a whole one counts as being there) and cut
/// to the display. Of zero width or height when nothing is left, or for numbers that are not
/// finite.
PixelRect nativeFromLocal(const VLRect& rect, const Display& display);

/// The displays of the connected server. Main thread.
class X11Displays {
 public:
    explicit X11Displays(std::shared_ptr<X11Connection> connection);

    /// Asks the server and the toolkit. Nothing when the connection is broken.
    std::vector<Display> read();
    /// What was last read, read now when there is nothing or `forget` was called.
    const std::vector<Display>& current();
    void forget() { isCurrent_ = false; }
    /// Whether the toolkit's screens lie where the server's monitors do: after a change, the
    /// toolkit may hear of it later than we do. True when there is no toolkit to ask.
    bool toolkitAgrees();
    /// Among `current`; null for an unknown one.
    const Display* find(uint32_t displayID);

 private:
    std::vector<NativeMonitor> readMonitors();
    uint32_t idOf(const std::string& name);

    std::shared_ptr<X11Connection> connection_;
    std::map<uint32_t, std::string> monitorNames_;  ///< by atom
    std::map<std::string, uint32_t> ids_;
    std::vector<Display> displays_;
    bool isCurrent_ = false;
};

}  // namespace vorla
