// Keeps the clipboard's PNG when its owner ends, as the manager of a desktop does. Plain xcb.
//
// It owns CLIPBOARD_MANAGER; asked for SAVE_TARGETS it fetches image/png from the clipboard's owner
// and owns the clipboard from then on. Standard output: "ready", and "kept N" with the bytes taken.

#include <poll.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "platform/base/raii.h"

namespace {

using vorla::MallocPtr;

class ClipboardManager {
 public:
    explicit ClipboardManager(xcb_connection_t* connection) : c_(connection) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c_)).data;
        window_ = xcb_generate_id(c_);
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(c_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &events);
        xcb_set_selection_owner(c_, window_, atom("CLIPBOARD_MANAGER"), XCB_CURRENT_TIME);
        // A round trip, so that the word is given when the server has done it.
        atom("TARGETS");
        std::puts("ready");
        std::fflush(stdout);
    }

    /// Serves until the input ends or the server goes away.
    void run() {
        pollfd fds[2] = {{xcb_get_file_descriptor(c_), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        while (xcb_connection_has_error(c_) == 0) {
            while (MallocPtr<xcb_generic_event_t> event{xcb_poll_for_event(c_)}) handle(*event);
            xcb_flush(c_);
            if (poll(fds, 2, -1) < 0 || fds[1].revents != 0) return;
        }
    }

 private:
    xcb_atom_t atom(const std::string& name) {
        const auto cookie =
            xcb_intern_atom(c_, 0, static_cast<uint16_t>(name.size()), name.c_str());
        const MallocPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(c_, cookie, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    void handle(const xcb_generic_event_t& event) {
        const uint8_t type = event.response_type & 0x7f;
        if (type == XCB_SELECTION_REQUEST)
            serve(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        else if (type == XCB_SELECTION_NOTIFY)
            take(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
        else if (type == XCB_PROPERTY_NOTIFY)
            takeNextStep(reinterpret_cast<const xcb_property_notify_event_t&>(event));
    }

    void serve(const xcb_selection_request_event_t& request) {
        if (request.target == atom("SAVE_TARGETS")) {
            request_ = request;
            xcb_convert_selection(c_, window_, atom("CLIPBOARD"), atom("image/png"), atom("KEPT"),
                                  XCB_CURRENT_TIME);
            return;
        }
        xcb_atom_t property = request.property;
        if (request.target == atom("TARGETS")) {
            const xcb_atom_t targets[] = {atom("TARGETS"), atom("image/png")};
            xcb_change_property(c_, XCB_PROP_MODE_REPLACE, request.requestor, property,
                                XCB_ATOM_ATOM, 32, 2, targets);
        } else if (request.target == atom("image/png") && !kept_.empty()) {
            xcb_change_property(c_, XCB_PROP_MODE_REPLACE, request.requestor, property,
                                request.target, 8, static_cast<uint32_t>(kept_.size()),
                                kept_.data());
        } else {
            property = XCB_ATOM_NONE;
        }
        answer(request, property);
    }

    void answer(const xcb_selection_request_event_t& request, xcb_atom_t property) {
        xcb_selection_notify_event_t event{};
        event.response_type = XCB_SELECTION_NOTIFY;
        event.time = request.time;
        event.requestor = request.requestor;
        event.selection = request.selection;
        event.target = request.target;
        event.property = property;
        xcb_send_event(c_, 0, request.requestor, 0, reinterpret_cast<const char*>(&event));
    }

    /// The property's bytes, which are then removed: the owner's sign for the next step.
    std::vector<uint8_t> takeProperty(xcb_atom_t* type) {
        const MallocPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            c_,
            xcb_get_property(c_, 1, window_, atom("KEPT"), XCB_GET_PROPERTY_TYPE_ANY, 0, 1U << 28),
            nullptr));
        if (!reply) return {};
        *type = reply->type;
        const auto* bytes = static_cast<const uint8_t*>(xcb_get_property_value(reply.get()));
        return {bytes, bytes + xcb_get_property_value_length(reply.get())};
    }

    void take(const xcb_selection_notify_event_t& notify) {
        if (notify.property == XCB_ATOM_NONE) return finish();
        xcb_atom_t type = XCB_ATOM_NONE;
        kept_ = takeProperty(&type);
        inSteps_ = type == atom("INCR");
        if (inSteps_)
            kept_.clear();
        else
            finish();
    }

    void takeNextStep(const xcb_property_notify_event_t& notify) {
        if (!inSteps_ || notify.atom != atom("KEPT") || notify.state != XCB_PROPERTY_NEW_VALUE)
            return;
        xcb_atom_t type = XCB_ATOM_NONE;
        const std::vector<uint8_t> step = takeProperty(&type);
        kept_.insert(kept_.end(), step.begin(), step.end());
        if (step.empty()) finish();
    }

    void finish() {
        inSteps_ = false;
        xcb_set_selection_owner(c_, window_, atom("CLIPBOARD"), XCB_CURRENT_TIME);
        answer(request_, request_.property);
        std::printf("kept %zu\n", kept_.size());
        std::fflush(stdout);
    }

    xcb_connection_t* c_;
    xcb_window_t window_ = XCB_NONE;
    xcb_selection_request_event_t request_{};
    std::vector<uint8_t> kept_;
    bool inSteps_ = false;
};

}  // namespace

int main() {
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(
        xcb_connect(nullptr, nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(connection.get()) != 0) return 1;
    ClipboardManager(connection.get()).run();
    return 0;
}
