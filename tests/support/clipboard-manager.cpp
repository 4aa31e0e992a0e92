// A clipboard manager as desktops have one, for tests of what outlives its program: it owns
// CLIPBOARD_MANAGER, and asked for SAVE_TARGETS it hands image/png from the clipboard's owner to an
// xclip of its own, which offers it from then on. Says "ready"; ends with its standard input.

#include <poll.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/base/raii.h"

namespace {

using vorla::MallocPtr;

xcb_atom_t atom(xcb_connection_t* c, const std::string& name) {
    const auto cookie = xcb_intern_atom(c, 0, static_cast<uint16_t>(name.size()), name.c_str());
    const MallocPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(c, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void serve(xcb_connection_t* c, const xcb_selection_request_event_t& request) {
    const bool saved = request.target == atom(c, "SAVE_TARGETS") &&
                       std::system(
                           "f=$(mktemp) && xclip -se c -o -t image/png >$f &&"
                           " xclip -se c -i -t image/png $f >/dev/null 2>&1; rm -f $f") == 0;
    xcb_selection_notify_event_t event{};
    event.response_type = XCB_SELECTION_NOTIFY;
    event.time = request.time;
    event.requestor = request.requestor;
    event.selection = request.selection;
    event.target = request.target;
    event.property = saved ? request.property : xcb_atom_t{XCB_ATOM_NONE};
    xcb_send_event(c, 0, request.requestor, 0, reinterpret_cast<const char*>(&event));
}

}  // namespace

int main() {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c) != 0) return 1;
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window,
                      xcb_setup_roots_iterator(xcb_get_setup(c)).data->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(c, window, atom(c, "CLIPBOARD_MANAGER"), XCB_CURRENT_TIME);
    atom(c, "TARGETS");  // a round trip, so that the word is given when the server has done it
    std::puts("ready");
    std::fflush(stdout);
    pollfd fds[2] = {{xcb_get_file_descriptor(c), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    while (xcb_connection_has_error(c) == 0) {
        while (const MallocPtr<xcb_generic_event_t> event{xcb_poll_for_event(c)})
            if ((event->response_type & 0x7f) == XCB_SELECTION_REQUEST)
                serve(c, reinterpret_cast<const xcb_selection_request_event_t&>(*event));
        xcb_flush(c);
        if (poll(fds, 2, -1) < 0 || fds[1].revents != 0) break;
    }
    xcb_disconnect(c);
    return 0;
}
