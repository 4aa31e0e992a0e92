#include "tests/support/XTestDriver.h"

#include <X11/keysym.h>
#include <xcb/res.h>
#include <xcb/xfixes.h>
#include <xcb/xtest.h>

#include <cstring>
#include <span>

#include "platform/base/raii.h"

namespace vorla::test {
namespace {

struct KeyName {
    std::string_view name;
    xcb_keysym_t keysym;
};

constexpr KeyName keyNames[] = {
    {"Escape", XK_Escape},       {"Return", XK_Return},   {"Tab", XK_Tab},
    {"Delete", XK_Delete},       {"Left", XK_Left},       {"Right", XK_Right},
    {"BackSpace", XK_BackSpace}, {"Up", XK_Up},           {"Down", XK_Down},
    {"Home", XK_Home},           {"End", XK_End},         {"Page_Up", XK_Page_Up},
    {"Page_Down", XK_Page_Down}, {"Shift_L", XK_Shift_L}, {"Control_L", XK_Control_L},
    {"Alt_L", XK_Alt_L},         {"space", XK_space},
};

uint32_t to8Bits(uint32_t deep) {
    return (deep >> 22 & 255) << 16 | (deep >> 12 & 255) << 8 | (deep >> 2 & 255);
}

}  // namespace

std::unique_ptr<XTestDriver> XTestDriver::create() {
    int number = 0;
    xcb_connection_t* connection = xcb_connect(nullptr, &number);
    const xcb_query_extension_reply_t* xtest =
        xcb_connection_has_error(connection) != 0
            ? nullptr
            : xcb_get_extension_data(connection, &xcb_test_id);
    if (xtest == nullptr || xtest->present == 0) {
        xcb_disconnect(connection);
        return nullptr;
    }
    auto it = xcb_setup_roots_iterator(xcb_get_setup(connection));
    while (number-- > 0 && it.rem > 1) xcb_screen_next(&it);
    return std::unique_ptr<XTestDriver>(new XTestDriver(connection, it.data));
}

XTestDriver::XTestDriver(xcb_connection_t* connection, xcb_screen_t* screen)
    : connection_(connection), screen_(screen) {}

XTestDriver::~XTestDriver() {
    xcb_disconnect(connection_);
}

void XTestDriver::sync() {
    MallocPtr<xcb_get_input_focus_reply_t>(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void XTestDriver::fake(uint8_t type, uint8_t detail, int x, int y) {
    xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, screen_->root,
                        static_cast<int16_t>(x), static_cast<int16_t>(y), 0);
    sync();
}

void XTestDriver::moveTo(int x, int y) {
    fake(XCB_MOTION_NOTIFY, 0, x, y);
}
void XTestDriver::press(int button) {
    fake(XCB_BUTTON_PRESS, static_cast<uint8_t>(button));
}
void XTestDriver::release(int button) {
    fake(XCB_BUTTON_RELEASE, static_cast<uint8_t>(button));
}

void XTestDriver::click(int x, int y, int button) {
    moveTo(x, y);
    press(button);
    release(button);
}

void XTestDriver::drag(QPoint from, QPoint to, int steps) {
    moveTo(from.x(), from.y());
    press();
    for (int i = 1; i <= steps; ++i)
        moveTo(from.x() + (to.x() - from.x()) * i / steps,
               from.y() + (to.y() - from.y()) * i / steps);
    release();
}

std::pair<xcb_keycode_t, bool> XTestDriver::keycodeOf(std::string_view name) {
    xcb_keysym_t wanted = XCB_NO_SYMBOL;
    if (name.size() == 1) wanted = static_cast<unsigned char>(name[0]);
    for (const KeyName& key : keyNames)
        if (key.name == name) wanted = key.keysym;
    if (wanted == XCB_NO_SYMBOL) return {0, false};
    const xcb_setup_t* setup = xcb_get_setup(connection_);
    const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const MallocPtr<xcb_get_keyboard_mapping_reply_t> map(xcb_get_keyboard_mapping_reply(
        connection_, xcb_get_keyboard_mapping(connection_, setup->min_keycode, count), nullptr));
    if (!map) return {0, false};
    const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(map.get());
    for (int level = 0; level < 2 && level < map->keysyms_per_keycode; ++level)
        for (int i = 0; i < count; ++i)
            if (keysyms[i * map->keysyms_per_keycode + level] == wanted)
                return {static_cast<xcb_keycode_t>(setup->min_keycode + i), level == 1};
    return {0, false};
}

bool XTestDriver::keyDown(std::string_view name) {
    const auto [keycode, shifted] = keycodeOf(name);
    if (keycode != 0) fake(XCB_KEY_PRESS, keycode);
    return keycode != 0;
}

bool XTestDriver::keyUp(std::string_view name) {
    const auto [keycode, shifted] = keycodeOf(name);
    if (keycode != 0) fake(XCB_KEY_RELEASE, keycode);
    return keycode != 0;
}

bool XTestDriver::key(std::string_view name) {
    const bool shifted = keycodeOf(name).second;
    if (shifted) keyDown("Shift_L");
    const bool known = keyDown(name) && keyUp(name);
    if (shifted) keyUp("Shift_L");
    return known;
}

QSize XTestDriver::rootSize() const {
    const MallocPtr<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, screen_->root), nullptr));
    return reply ? QSize(reply->width, reply->height) : QSize();
}

QImage XTestDriver::rootPixels() {
    return rootPixels(QRect(QPoint(0, 0), rootSize()));
}

QImage XTestDriver::rootPixels(QRect rect) {
    const auto cookie = xcb_get_image(
        connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, screen_->root, static_cast<int16_t>(rect.x()),
        static_cast<int16_t>(rect.y()), static_cast<uint16_t>(rect.width()),
        static_cast<uint16_t>(rect.height()), ~0U);
    const MallocPtr<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection_, cookie, nullptr));
    if (!reply) return {};
    QImage image(rect.size(), QImage::Format_RGB32);
    const uint8_t* source = xcb_get_image_data(reply.get());
    for (int y = 0; y < rect.height(); ++y) {
        auto* line = reinterpret_cast<uint32_t*>(image.scanLine(y));
        std::memcpy(line, source + static_cast<size_t>(y) * rect.width() * 4,
                    static_cast<size_t>(rect.width()) * 4);
        for (int x = 0; x < rect.width(); ++x)
            line[x] = 0xff000000U | (reply->depth == 30 ? to8Bits(line[x]) : line[x]);
    }
    return image;
}

QPoint XTestDriver::pointer() {
    const MallocPtr<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        connection_, xcb_query_pointer(connection_, screen_->root), nullptr));
    return reply ? QPoint(reply->root_x, reply->root_y) : QPoint(-1, -1);
}

bool XTestDriver::pointerIsGrabbed() {
    const MallocPtr<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(
        connection_,
        xcb_grab_pointer(connection_, 0, screen_->root, 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                         XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
        nullptr));
    xcb_ungrab_pointer(connection_, XCB_CURRENT_TIME);
    sync();
    return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

bool XTestDriver::keyboardIsGrabbed() {
    const MallocPtr<xcb_grab_keyboard_reply_t> reply(
        xcb_grab_keyboard_reply(connection_,
                                xcb_grab_keyboard(connection_, 0, screen_->root, XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
    xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    sync();
    return reply && reply->status == XCB_GRAB_STATUS_ALREADY_GRABBED;
}

xcb_window_t XTestDriver::focus() {
    const MallocPtr<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    return reply ? reply->focus : xcb_window_t{XCB_NONE};
}

void XTestDriver::setFocus(xcb_window_t window) {
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    sync();
}

QImage XTestDriver::cursorImage() {
    MallocPtr<xcb_xfixes_query_version_reply_t>(xcb_xfixes_query_version_reply(
        connection_, xcb_xfixes_query_version(connection_, 4, 0), nullptr));
    const MallocPtr<xcb_xfixes_get_cursor_image_reply_t> reply(xcb_xfixes_get_cursor_image_reply(
        connection_, xcb_xfixes_get_cursor_image(connection_), nullptr));
    if (!reply) return {};
    const uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(reply.get());
    return QImage(reinterpret_cast<const uchar*>(pixels), reply->width, reply->height,
                  reply->width * 4, QImage::Format_ARGB32_Premultiplied)
        .copy();
}

xcb_atom_t XTestDriver::atom(std::string_view name) {
    const MallocPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.data()), nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void XTestDriver::sendToManager(xcb_window_t window, std::string_view type, uint32_t data0,
                                uint32_t data1) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(type);
    event.data.data32[0] = data0;
    event.data.data32[1] = data1;
    xcb_send_event(connection_, 0, screen_->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    sync();
}

QRect XTestDriver::contentRect(xcb_window_t window) {
    const MallocPtr<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    const MallocPtr<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(
        connection_, xcb_translate_coordinates(connection_, window, screen_->root, 0, 0), nullptr));
    if (!size || !place) return {};
    return {place->dst_x, place->dst_y, size->width, size->height};
}

std::vector<uint32_t> XTestDriver::propertyWords(xcb_window_t window, std::string_view name) {
    const MallocPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        connection_,
        xcb_get_property(connection_, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024),
        nullptr));
    if (!reply || reply->format != 32) return {};
    const auto* words = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return {words, words + xcb_get_property_value_length(reply.get()) / 4};
}

void XTestDriver::killClient(uint32_t client) {
    xcb_kill_client(connection_, client);
    sync();
}

void XTestDriver::moveWindow(xcb_window_t window, int x, int y) {
    const uint32_t values[] = {static_cast<uint32_t>(x), static_cast<uint32_t>(y)};
    xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
    sync();
}

void XTestDriver::unmap(xcb_window_t window) {
    xcb_unmap_window(connection_, window);
    sync();
}

bool XTestDriver::isViewable(xcb_window_t window) {
    const MallocPtr<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, window), nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::vector<uint32_t> XTestDriver::clientsOfProcess(int pid) {
    const xcb_res_client_id_spec_t spec{XCB_NONE, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const MallocPtr<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(
        connection_, xcb_res_query_client_ids(connection_, 1, &spec), nullptr));
    std::vector<uint32_t> clients;
    if (!reply) return clients;
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem > 0;
         xcb_res_client_id_value_next(&it))
        if (xcb_res_client_id_value_value_length(it.data) > 0 &&
            static_cast<int>(*xcb_res_client_id_value_value(it.data)) == pid)
            clients.push_back(it.data->spec.client);
    return clients;
}

std::map<std::string, uint32_t> XTestDriver::resourcesOfProcess(int pid) {
    std::map<std::string, uint32_t> counts;
    for (const uint32_t client : clientsOfProcess(pid)) {
        const MallocPtr<xcb_res_query_client_resources_reply_t> reply(
            xcb_res_query_client_resources_reply(
                connection_, xcb_res_query_client_resources(connection_, client), nullptr));
        if (!reply) continue;
        const std::span types(
            xcb_res_query_client_resources_types(reply.get()),
            static_cast<size_t>(xcb_res_query_client_resources_types_length(reply.get())));
        for (const xcb_res_type_t& type : types) {
            const MallocPtr<xcb_get_atom_name_reply_t> name(xcb_get_atom_name_reply(
                connection_, xcb_get_atom_name(connection_, type.resource_type), nullptr));
            if (!name) continue;
            const std::string text(xcb_get_atom_name_name(name.get()),
                                   static_cast<size_t>(xcb_get_atom_name_name_length(name.get())));
            counts[text] += type.count;
        }
    }
    return counts;
}

uint64_t XTestDriver::pixmapBytesOfProcess(int pid) {
    uint64_t bytes = 0;
    for (const uint32_t client : clientsOfProcess(pid)) {
        const MallocPtr<xcb_res_query_client_pixmap_bytes_reply_t> reply(
            xcb_res_query_client_pixmap_bytes_reply(
                connection_, xcb_res_query_client_pixmap_bytes(connection_, client), nullptr));
        if (reply) bytes += static_cast<uint64_t>(reply->bytes_overflow) << 32 | reply->bytes;
    }
    return bytes;
}

}  // namespace vorla::test
