#pragma once

#include <string>
#include <vector>

#include "platform/windowserver/WindowServer.h"

namespace vorla {

/// The common part; a rectangle of zero width and height when there is none.
PixelRect intersectionOf(const PixelRect& a, const PixelRect& b);

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

}  // namespace vorla
