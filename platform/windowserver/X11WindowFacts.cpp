#include "platform/windowserver/X11WindowFacts.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <fstream>
#include <string_view>

namespace vorla {

X11WindowQuery::X11WindowQuery(const X11Connection& connection, xcb_window_t client) {
    const auto ask = [&](X11Atom name) {
        return connection.askProperty(client, connection.atom(name));
    };
    geometry = xcb_get_geometry(connection.get(), client);
    place = xcb_translate_coordinates(connection.get(), client, connection.root(), 0, 0);
    managerState = ask(X11Atom::WmState);
    windowClass = connection.askProperty(client, XCB_ATOM_WM_CLASS);
    pid = ask(X11Atom::NetWmPid);
    machine = ask(X11Atom::WmClientMachine);
    types = ask(X11Atom::NetWmWindowType);
    states = ask(X11Atom::NetWmState);
    desktop = ask(X11Atom::NetWmDesktop);
    gtkExtents = ask(X11Atom::GtkFrameExtents);
    frameExtents = ask(X11Atom::NetFrameExtents);
}

std::span<const uint32_t> wordsOf(const xcb_get_property_reply_t* property) {
    if (property == nullptr || property->format != 32) return {};
    return {static_cast<const uint32_t*>(xcb_get_property_value(property)),
            static_cast<size_t>(xcb_get_property_value_length(property)) / 4};
}

namespace {

std::string_view bytesOf(const xcb_get_property_reply_t* property) {
    if (property == nullptr || property->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(property)),
            static_cast<size_t>(xcb_get_property_value_length(property))};
}

}  // namespace

std::string textOf(const xcb_get_property_reply_t* property) {
    const std::string_view bytes = bytesOf(property);
    return std::string(bytes.substr(0, bytes.find('\0')));
}

std::string classNameOf(const xcb_get_property_reply_t* property) {
    const std::string_view bytes = bytesOf(property);
    const size_t first = bytes.find('\0');
    if (first != std::string_view::npos) {
        std::string_view second = bytes.substr(first + 1);
        second = second.substr(0, second.find('\0'));
        if (!second.empty()) return std::string(second);
    }
    return std::string(bytes.substr(0, first));
}

std::string processName(int32_t pid) {
    if (pid <= 0) return {};
    std::ifstream file("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

std::string hostName() {
    char name[HOST_NAME_MAX + 1] = {};
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

}  // namespace vorla
