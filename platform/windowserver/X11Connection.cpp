#include "platform/windowserver/X11Connection.h"

#include <sys/socket.h>
#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/res.h>
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include <bit>
#include <string>
#include <string_view>

#include "platform/base/VLLog.h"

namespace vorla {
namespace {

// In the order of X11Atom; the last, the compositor's selection, has the screen's number added.
constexpr std::string_view atomNames[] = {
    "WM_STATE",
    "WM_CLIENT_MACHINE",
    "_NET_ACTIVE_WINDOW",
    "_NET_CLIENT_LIST",
    "_NET_CURRENT_DESKTOP",
    "_NET_FRAME_EXTENTS",
    "_NET_WM_DESKTOP",
    "_NET_WM_PID",
    "_NET_WM_STATE",
    "_NET_WM_STATE_ABOVE",
    "_NET_WM_STATE_BELOW",
    "_NET_WM_STATE_FULLSCREEN",
    "_NET_WM_STATE_HIDDEN",
    "_NET_WM_WINDOW_TYPE",
    "_NET_WM_WINDOW_TYPE_DESKTOP",
    "_NET_WM_WINDOW_TYPE_DOCK",
    "_GTK_FRAME_EXTENTS",
    "_NET_WM_CM_S",
};
static_assert(std::size(atomNames) == static_cast<size_t>(X11Atom::Count));

xcb_screen_t* screenNumbered(const xcb_setup_t* setup, int number) {
    auto it = xcb_setup_roots_iterator(setup);
    while (number-- > 0 && it.rem > 1) xcb_screen_next(&it);
    return it.rem > 0 ? it.data : nullptr;
}

PixelLayout layoutOfMasks(uint8_t depth, const xcb_visualtype_t& visual) {
    const auto masks = [&visual](uint32_t red, uint32_t green, uint32_t blue) {
        return visual.red_mask == red && visual.green_mask == green && visual.blue_mask == blue;
    };
    if (depth == 24 && masks(0xff0000, 0xff00, 0xff)) return PixelLayout::Rgb24;
    if (depth == 32 && masks(0xff0000, 0xff00, 0xff)) return PixelLayout::Argb32;
    if (depth == 30 && masks(0x3ff00000, 0xffc00, 0x3ff)) return PixelLayout::Rgb30;
    return PixelLayout::Unsupported;
}

/// File descriptors travel over local sockets only; sending one elsewhere breaks the connection.
bool isLocalSocket(int fd) {
    int domain = 0;
    socklen_t size = sizeof domain;
    return getsockopt(fd, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0 && domain == AF_UNIX;
}

}  // namespace

std::shared_ptr<X11Connection> X11Connection::open() {
    int number = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &number);
    xcb_screen_t* screen = xcb_connection_has_error(connection) != 0
                               ? nullptr
                               : screenNumbered(xcb_get_setup(connection), number);
    if (screen == nullptr) {
        xcb_disconnect(connection);
        VLLogError("window server: no display server to connect to");
        return nullptr;
    }
    std::shared_ptr<X11Connection> result(new X11Connection(connection, screen));
    result->readExtensions();
    if (result->isNested()) {
        VLLogError("window server: this X server runs inside another display system, not served");
        return nullptr;
    }
    result->readAtoms(number);
    result->readLayouts();
    return result;
}

X11Connection::X11Connection(xcb_connection_t* connection, xcb_screen_t* screen)
    : connection_(connection), screen_(screen) {}

X11Connection::~X11Connection() {
    xcb_disconnect(connection_);
}

bool X11Connection::isNested() {
    constexpr std::string_view name = "XWAYLAND";
    const auto found = reply(&xcb_query_extension_reply,
                             xcb_query_extension(connection_, name.size(), name.data()));
    if (found && found->present != 0) return true;
    // Older ones have no such extension, but call their outputs by that name.
    if (!extensions_.monitors) return false;
    const auto list =
        reply(&xcb_randr_get_monitors_reply, xcb_randr_get_monitors(connection_, root(), 1));
    if (!list || xcb_randr_get_monitors_monitors_length(list.get()) == 0) return false;
    const auto first = xcb_randr_get_monitors_monitors_iterator(list.get());
    const auto answer =
        reply(&xcb_get_atom_name_reply, xcb_get_atom_name(connection_, first.data->name));
    return answer &&
           std::string_view(xcb_get_atom_name_name(answer.get()),
                            static_cast<size_t>(xcb_get_atom_name_name_length(answer.get())))
               .starts_with(name);
}

void X11Connection::readAtoms(int screenNumber) {
    std::array<xcb_intern_atom_cookie_t, static_cast<size_t>(X11Atom::Count)> cookies;
    for (size_t i = 0; i < cookies.size(); ++i) {
        std::string name(atomNames[i]);
        if (static_cast<X11Atom>(i) == X11Atom::CompositorSelection)
            name += std::to_string(screenNumber);
        cookies[i] =
            xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.data());
    }
    for (size_t i = 0; i < cookies.size(); ++i) {
        const auto answer = reply(&xcb_intern_atom_reply, cookies[i]);
        if (answer) atoms_[i] = answer->atom;
    }
}

void X11Connection::readExtensions() {
    xcb_extension_t* const wanted[] = {&xcb_shm_id,   &xcb_composite_id, &xcb_damage_id,
                                       &xcb_randr_id, &xcb_xfixes_id,    &xcb_res_id};
    for (xcb_extension_t* extension : wanted) xcb_prefetch_extension_data(connection_, extension);
    const auto data = [this](xcb_extension_t* extension) {
        const xcb_query_extension_reply_t* found = xcb_get_extension_data(connection_, extension);
        return found != nullptr && found->present != 0 ? found : nullptr;
    };
    if (data(&xcb_shm_id) != nullptr) {
        const auto v = reply(&xcb_shm_query_version_reply, xcb_shm_query_version(connection_));
        extensions_.sharedMemory = v && (v->major_version > 1 || v->minor_version >= 2) &&
                                   isLocalSocket(xcb_get_file_descriptor(connection_));
    }
    if (data(&xcb_composite_id) != nullptr && data(&xcb_damage_id) != nullptr &&
        data(&xcb_xfixes_id) != nullptr) {
        const auto composite = xcb_composite_query_version(connection_, 0, 4);
        const auto damage = xcb_damage_query_version(connection_, 1, 1);
        const auto fixes = xcb_xfixes_query_version(connection_, 5, 0);
        const auto c = reply(&xcb_composite_query_version_reply, composite);
        const auto d = reply(&xcb_damage_query_version_reply, damage);
        const auto f = reply(&xcb_xfixes_query_version_reply, fixes);
        extensions_.composite =
            c && d && f && f->major_version >= 2 && (c->major_version > 0 || c->minor_version >= 2);
    }
    if (const auto* randr = data(&xcb_randr_id)) {
        const auto v =
            reply(&xcb_randr_query_version_reply, xcb_randr_query_version(connection_, 1, 5));
        extensions_.monitors = v && (v->major_version > 1 || v->minor_version >= 5);
        extensions_.randrEvent = randr->first_event;
    }
    if (data(&xcb_res_id) != nullptr) {
        const auto v =
            reply(&xcb_res_query_version_reply, xcb_res_query_version(connection_, 1, 2));
        extensions_.clientIds = v && (v->server_major > 1 || v->server_minor >= 2);
    }
}

void X11Connection::readLayouts() {
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    constexpr uint8_t nativeOrder = std::endian::native == std::endian::little
                                        ? XCB_IMAGE_ORDER_LSB_FIRST
                                        : XCB_IMAGE_ORDER_MSB_FIRST;
    const auto bitsPerPixel = [setup](uint8_t depth) {
        for (auto f = xcb_setup_pixmap_formats_iterator(setup); f.rem > 0; xcb_format_next(&f))
            if (f.data->depth == depth) return static_cast<int>(f.data->bits_per_pixel);
        return 0;
    };
    for (auto d = xcb_screen_allowed_depths_iterator(screen_); d.rem > 0; xcb_depth_next(&d)) {
        const bool readable =
            setup->image_byte_order == nativeOrder && bitsPerPixel(d.data->depth) == 32;
        for (auto v = xcb_depth_visuals_iterator(d.data); v.rem > 0; xcb_visualtype_next(&v))
            layouts_[v.data->visual_id] =
                readable ? layoutOfMasks(d.data->depth, *v.data) : PixelLayout::Unsupported;
    }
    if (layoutOf(screen_->root_visual) == PixelLayout::Unsupported)
        VLLogError("window server: pixels of depth %d cannot be read", screen_->root_depth);
}

PixelLayout X11Connection::layoutOf(xcb_visualid_t visual) const {
    const auto found = layouts_.find(visual);
    return found == layouts_.end() ? PixelLayout::Unsupported : found->second;
}

bool X11Connection::isAlive() {
    if (xcb_connection_has_error(connection_) == 0) return true;
    if (!loggedLoss_) VLLogError("window server: the connection to the display server is lost");
    loggedLoss_ = true;
    return false;
}

bool X11Connection::succeeded(xcb_void_cookie_t checked) {
    const MallocPtr<xcb_generic_error_t> error(xcb_request_check(connection_, checked));
    return !error && xcb_connection_has_error(connection_) == 0;
}

}  // namespace vorla
