#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/windowserver/X11Connection.h"

namespace vorla {

/// The requests for the facts of one client window, all under way at once: constructing sends
/// them, the readers claim the answers (each once, every one of them).
struct X11WindowQuery {
    X11WindowQuery(const X11Connection& connection, xcb_window_t client);

    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t place;
    xcb_get_property_cookie_t managerState, windowClass, pid, machine, types, states, desktop,
        gtkExtents, frameExtents;
};

/// The 32-bit words of a property; empty when it is absent or of another size.
std::span<const uint32_t> wordsOf(const xcb_get_property_reply_t* property);

/// The text of a property up to the first NUL.
std::string textOf(const xcb_get_property_reply_t* property);

/// The second of the two texts of a WM_CLASS property; the first when the second is empty.
std::string classNameOf(const xcb_get_property_reply_t* property);

/// The program's name as the system has it, for windows that do not state theirs; empty when the
/// process is not there.
std::string processName(int32_t pid);

/// Name of this machine as clients put it into WM_CLIENT_MACHINE.
std::string hostName();

}  // namespace vorla
