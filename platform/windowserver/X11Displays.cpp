#include "platform/windowserver/X11Displays.h"

#include <xcb/randr.h>

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <utility>

namespace vorla {
namespace {

/// The toolkit's screens, when it draws on the same kind of server; empty otherwise.
std::vector<NativeMonitor> toolkitScreens() {
    std::vector<NativeMonitor> screens;
    if (qGuiApp == nullptr || QGuiApplication::platformName() != QLatin1String("xcb"))
        return screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect frame = screen->geometry();
        const double scale = screen->devicePixelRatio();
        screens.push_back(
            {screen->name().toStdString(),
             {frame.x(), frame.y(), static_cast<int>(std::lround(frame.width() * scale)),
              static_cast<int>(std::lround(frame.height() * scale))},
             scale});
    }
    return screens;
}

/// FNV-1a, 32 bits (Fowler, Noll, Vo): http://www.isthe.com/chongo/tech/comp/fnv/
uint32_t hashOf(const std::string& text) {
    uint32_t hash = 2166136261U;
    for (const char ch : text) hash = (hash ^ static_cast<unsigned char>(ch)) * 16777619U;
    return hash;
}

}  // namespace

X11Displays::X11Displays(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)) {}

X11Displays::MonitorsAsked X11Displays::askMonitors() const {
    if (!connection_->extensions().monitors) return {};
    return xcb_randr_get_monitors(connection_->get(), connection_->root(), 1);
}

std::vector<NativeMonitor> X11Displays::readMonitors(const MonitorsAsked& asked) {
    std::vector<NativeMonitor> monitors;
    xcb_connection_t* c = connection_->get();
    if (asked) {
        const auto list = connection_->reply(&xcb_randr_get_monitors_reply, *asked);
        if (!list) return monitors;
        for (auto it = xcb_randr_get_monitors_monitors_iterator(list.get()); it.rem > 0;
             xcb_randr_monitor_info_next(&it)) {
            std::string& name = monitorNames_[it.data->name];
            if (name.empty()) {
                const auto answer = connection_->reply(&xcb_get_atom_name_reply,
                                                       xcb_get_atom_name(c, it.data->name));
                if (answer)
                    name.assign(xcb_get_atom_name_name(answer.get()),
                                static_cast<size_t>(xcb_get_atom_name_name_length(answer.get())));
            }
            monitors.push_back({name, {it.data->x, it.data->y, it.data->width, it.data->height}});
        }
    }
    return monitors;
}

std::vector<Display> X11Displays::read() {
    const auto rootAsked = xcb_get_geometry(connection_->get(), connection_->root());
    const MonitorsAsked monitorsAsked = askMonitors();
    const auto root = connection_->reply(&xcb_get_geometry_reply, rootAsked);
    const std::vector<NativeMonitor> listed = readMonitors(monitorsAsked);
    if (!root || !connection_->isAlive()) return {};
    const PixelRect whole{0, 0, root->width, root->height};
    std::vector<NativeMonitor> monitors = matchMonitors(listed, toolkitScreens());
    if (monitors.empty()) monitors.push_back({"screen", whole});
    std::map<std::string, int> seen;
    for (NativeMonitor& monitor : monitors) {
        const int copies = ++seen[monitor.name];
        if (copies > 1) monitor.name += "#" + std::to_string(copies);
        monitor.frame = intersectionOf(monitor.frame, whole);
    }
    std::erase_if(monitors, [](const NativeMonitor& m) { return m.frame.width == 0; });
    displays_ = layOutDisplays(monitors);
    for (Display& display : displays_) display.displayID = idOf(display.name);
    isCurrent_ = true;
    return displays_;
}

bool X11Displays::toolkitAgrees() {
    const std::vector<NativeMonitor> screens = toolkitScreens();
    const std::vector<NativeMonitor> monitors = readMonitors(askMonitors());
    if (screens.empty() || monitors.empty()) return true;
    const auto isAt = [](const NativeMonitor& screen, const NativeMonitor& monitor) {
        // The toolkit rounds sizes to whole points.
        return screen.frame.x == monitor.frame.x && screen.frame.y == monitor.frame.y &&
               std::abs(screen.frame.width - monitor.frame.width) <= screen.scale &&
               std::abs(screen.frame.height - monitor.frame.height) <= screen.scale;
    };
    return screens.size() == monitors.size() &&
           std::all_of(screens.begin(), screens.end(), [&](const NativeMonitor& screen) {
               return std::any_of(
                   monitors.begin(), monitors.end(),
                   [&](const NativeMonitor& monitor) { return isAt(screen, monitor); });
           });
}

const std::vector<Display>& X11Displays::current() {
    if (!isCurrent_) read();
    return displays_;
}

const Display* X11Displays::find(uint32_t displayID) {
    for (const Display& display : current())
        if (display.displayID == displayID) return &display;
    return nullptr;
}

uint32_t X11Displays::idOf(const std::string& name) {
    if (const auto known = ids_.find(name); known != ids_.end()) return known->second;
    uint32_t id = hashOf(name);
    const auto taken = [this](uint32_t value) {
        return std::any_of(ids_.begin(), ids_.end(),
                           [value](const auto& entry) { return entry.second == value; });
    };
    // All ones mean "no window" among window numbers; keep that out of identifiers as well.
    while (id == 0 || id == ~0U || taken(id)) ++id;
    ids_[name] = id;
    return id;
}

}  // namespace vorla
