// Keeps a picture on the clipboard after the program that put it there has ended.
//   vorla-clipboard-keeper OWNER [now] < PICTURE
// OWNER is the window that owns the clipboard, in decimal. The keeper waits in the background until
// that window goes, then owns the clipboard itself and serves the picture as image/png until
// someone else takes the clipboard. It ends at once where a clipboard manager does this. With "now"
// it takes the clipboard from that window without waiting, manager or not.

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

/// The bytes of a file or memory file, mapped; empty for anything else.
std::string_view mapped(int file) {
    struct stat facts = {};
    if (::fstat(file, &facts) != 0 || facts.st_size <= 0) return {};
    const auto size = static_cast<size_t>(facts.st_size);
    void* memory = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
    return memory == MAP_FAILED ? std::string_view()
                                : std::string_view(static_cast<const char*>(memory), size);
}

/// Lets the caller's wait end, and leaves its session, terminal and files behind.
void goToBackground() {
    if (const pid_t child = ::fork(); child != 0) ::_exit(child < 0 ? 1 : 0);
    ::setsid();
    if (::chdir("/") != 0) return;
}

class Keeper {
 public:
    Keeper(xcb_connection_t* connection, std::string_view picture)
        : connection_(connection), picture_(picture) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        root_ = screen->root;
        window_ = xcb_generate_id(connection_);
        const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, root_, -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, screen->root_visual, XCB_CW_EVENT_MASK,
                          &events);
    }

    /// Serves the picture for as long as it is wanted.
    void keep(xcb_window_t owner, bool now) {
        const auto* xfixes = xcb_get_extension_data(connection_, &xcb_xfixes_id);
        if (!xfixes || !xfixes->present) return;
        const Reply<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
            connection_, xcb_xfixes_query_version(connection_, 5, 0), nullptr));
        xcb_xfixes_select_selection_input(
            connection_, root_, clipboard_,
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        // From here on every change is an event. The owner may have disappeared before.
        const xcb_window_t present = ownerOf(clipboard_);
        if (present != XCB_NONE && present != owner) return;
        if ((present == XCB_NONE || now) && !takeOver(now)) return;
        while (const Reply<xcb_generic_event_t> event{xcb_wait_for_event(connection_)}) {
            const uint8_t type = event->response_type & 0x7f;
            if (type == xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY) {
                const auto& change =
                    reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(*event);
                // An event may tell of the time before the clipboard was taken.
                if (change.owner == window_ || ownerOf(clipboard_) == window_) continue;
                if (change.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER) return;
                if (!takeOver(false)) return;
            } else if (type == XCB_SELECTION_REQUEST) {
                answer(reinterpret_cast<const xcb_selection_request_event_t&>(*event));
            } else if (type == XCB_PROPERTY_NOTIFY) {
                continueTransfer(reinterpret_cast<const xcb_property_notify_event_t&>(*event));
            }
        }
    }

 private:
    xcb_atom_t atom(std::string_view name) {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection_,
            xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.data()),
            nullptr));
        return reply ? reply->atom : XCB_NONE;
    }

    xcb_window_t ownerOf(xcb_atom_t selection) {
        const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
            connection_, xcb_get_selection_owner(connection_, selection), nullptr));
        return reply ? reply->owner : XCB_NONE;
    }

    /// The server's time: owning a selection takes a time stamp, and only events carry one.
    xcb_timestamp_t serverTime() {
        xcb_change_property(connection_, XCB_PROP_MODE_APPEND, window_, XCB_ATOM_WM_NAME,
                            XCB_ATOM_STRING, 8, 0, nullptr);
        xcb_flush(connection_);
        while (const Reply<xcb_generic_event_t> event{xcb_wait_for_event(connection_)})
            if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY)
                return reinterpret_cast<const xcb_property_notify_event_t&>(*event).time;
        return XCB_CURRENT_TIME;
    }

    bool takeOver(bool now) {
        if (!now && ownerOf(atom("CLIPBOARD_MANAGER")) != XCB_NONE) return false;
        since_ = serverTime();
        if (!now && ownerOf(clipboard_) != XCB_NONE) return false;
        xcb_set_selection_owner(connection_, window_, clipboard_, since_);
        return ownerOf(clipboard_) == window_;
    }

    void answer(const xcb_selection_request_event_t& request) {
        // Clients of old leave the property to the owner's choice.
        const xcb_atom_t property = request.property ? request.property : request.target;
        // Every event has 32 bytes on the wire, and all are read from here.
        union {
            char bytes[32] = {};
            xcb_selection_notify_event_t notice;
        };
        notice.response_type = XCB_SELECTION_NOTIFY;
        notice.time = request.time;
        notice.requestor = request.requestor;
        notice.selection = request.selection;
        notice.target = request.target;
        notice.property = store(request.requestor, property, request.target) ? property : XCB_NONE;
        xcb_send_event(connection_, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, bytes);
        xcb_flush(connection_);
    }

    bool store(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t target) {
        if (target == targets_) {
            const xcb_atom_t offered[] = {targets_, timestamp_, png_};
            xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property,
                                XCB_ATOM_ATOM, 32, std::size(offered), offered);
        } else if (target == timestamp_) {
            xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property,
                                XCB_ATOM_INTEGER, 32, 1, &since_);
        } else if (target == png_ && picture_.size() <= largestPiece) {
            put(requestor, property, picture_);
        } else if (target == png_) {
            // In pieces, each after the receiver has removed the one before (ICCCM 2.7.2).
            const uint32_t events =
                XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
            xcb_change_window_attributes(connection_, requestor, XCB_CW_EVENT_MASK, &events);
            const auto size = static_cast<uint32_t>(picture_.size());
            xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, incr_, 32,
                                1, &size);
            transfers_[{requestor, property}] = 0;
        } else {
            return false;
        }
        return true;
    }

    void continueTransfer(const xcb_property_notify_event_t& event) {
        const auto transfer = transfers_.find({event.window, event.atom});
        if (event.state != XCB_PROPERTY_DELETE || transfer == transfers_.end()) return;
        const auto piece = picture_.substr(transfer->second, largestPiece);
        put(event.window, event.atom, piece);
        transfer->second += piece.size();
        if (piece.empty()) transfers_.erase(transfer);
        xcb_flush(connection_);
    }

    void put(xcb_window_t requestor, xcb_atom_t property, std::string_view bytes) {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, requestor, property, png_, 8,
                            static_cast<uint32_t>(bytes.size()), bytes.data());
    }

    static constexpr size_t largestPiece = size_t{128} << 10;  // fits any server's requests

    xcb_connection_t* connection_;
    std::string_view picture_;
    xcb_window_t root_ = XCB_NONE;
    xcb_window_t window_ = XCB_NONE;
    xcb_timestamp_t since_ = XCB_CURRENT_TIME;
    xcb_atom_t clipboard_ = atom("CLIPBOARD");
    xcb_atom_t targets_ = atom("TARGETS");
    xcb_atom_t timestamp_ = atom("TIMESTAMP");
    xcb_atom_t incr_ = atom("INCR");
    xcb_atom_t png_ = atom("image/png");
    std::map<std::pair<xcb_window_t, xcb_atom_t>, size_t> transfers_;  ///< bytes sent so far
};

}  // namespace

int main(int argc, char** argv) {
    const bool now = argc == 3 && std::string_view(argv[2]) == "now";
    if (argc != 2 && !now) return 2;
    const std::string_view picture = mapped(STDIN_FILENO);
    const auto owner = static_cast<xcb_window_t>(std::strtoul(argv[1], nullptr, 10));
    if (picture.empty() || owner == XCB_NONE) return 2;
    goToBackground();
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (!xcb_connection_has_error(connection)) Keeper(connection, picture).keep(owner, now);
    xcb_disconnect(connection);
    return 0;
}
