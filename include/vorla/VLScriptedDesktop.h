#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <vorla/export.h>

/// @file
/// A desktop that exists in memory only, so that a host's own tests can run captures where there is
/// no display: on the toolkit's "offscreen" platform, with events sent to the panels, which are the
/// application's top-level widgets. Main thread.

/// A screen, in native pixels, y downward. `scale` is the number of pixels to a point, 1.0 to 4.0.
/// The toolkit has screens of its own, and panels are put on those: give its first one's geometry.
struct VLScriptedScreen {
    int x = 0;           ///< left edge
    int y = 0;           ///< upper edge
    int width = 0;       ///< in pixels, above 0
    int height = 0;      ///< in pixels, above 0
    double scale = 1.0;  ///< pixels to a point
};

/// A window, in native pixels, y downward, of one colour, 0xAARRGGBB, not premultiplied. `owner` is
/// the name of its program, UTF-8; `number` distinguishes it and is not 0.
struct VLScriptedWindow {
    int x = 0;                     ///< left edge
    int y = 0;                     ///< upper edge
    int width = 0;                 ///< in pixels
    int height = 0;                ///< in pixels
    uint32_t number = 0;           ///< not 0
    std::string owner;             ///< name of its program
    uint32_t color = 0xff808080U;  ///< of all its pixels
};

/// From the next capture on, sessions see these screens, of which the first holds the menu bar, and
/// these windows, front to back, instead of the desktop that the program runs on; the bare desktop
/// shows a pattern in which neighbouring pixels differ. Without screens the real desktop is back.
/// Not during a capture: then it does nothing, and the log says so.
VL_EXPORT void VLSetScriptedDesktop(const std::vector<VLScriptedScreen>& screens,
                                    const std::vector<VLScriptedWindow>& windows);
