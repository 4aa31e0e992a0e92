#include "platform/windowserver/displayLayout.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace vorla {

PixelRect intersectionOf(const PixelRect& a, const PixelRect& b) {
    const int left = std::max(a.x, b.x);
    const int top = std::max(a.y, b.y);
    const int right = std::min(a.x + a.width, b.x + b.width);
    const int bottom = std::min(a.y + a.height, b.y + b.height);
    if (right <= left || bottom <= top) return {};
    return {left, top, right - left, bottom - top};
}

std::vector<NativeMonitor> matchMonitors(const std::vector<NativeMonitor>& monitors,
                                         const std::vector<NativeMonitor>& screens) {
    if (screens.empty()) return monitors;
    std::vector<NativeMonitor> free = monitors;
    std::vector<NativeMonitor> result;
    const auto claim = [&free](auto&& fits) -> std::optional<NativeMonitor> {
        const auto found = std::find_if(free.begin(), free.end(), fits);
        if (found == free.end()) return std::nullopt;
        NativeMonitor monitor = *found;
        free.erase(found);
        return monitor;
    };
    for (const NativeMonitor& screen : screens) {
        const auto sameOrigin = [&screen](const NativeMonitor& m) {
            return m.frame.x == screen.frame.x && m.frame.y == screen.frame.y;
        };
        const auto sameName = [&screen](const NativeMonitor& m) { return m.name == screen.name; };
        auto monitor = claim([&](const auto& m) { return sameOrigin(m) && sameName(m); });
        if (!monitor) monitor = claim(sameOrigin);
        if (!monitor) monitor = claim(sameName);
        if (!monitor) monitor = screen;
        monitor->scale = screen.scale;
        result.push_back(std::move(*monitor));
    }
    return result;
}

std::vector<Display> layOutDisplays(const std::vector<NativeMonitor>& monitors) {
    std::vector<Display> displays;
    for (const NativeMonitor& monitor : monitors) {
        Display display;
        display.name = monitor.name;
        display.nativeFrame = monitor.frame;
        display.scale = monitor.scale > 0.0 ? monitor.scale : 1.0;
        displays.push_back(std::move(display));
    }
    for (Display& display : displays)
        display.frame = pointsFromNative(display.nativeFrame, display, displays.front());
    return displays;
}

VLRect pointsFromNative(const PixelRect& rect, const Display& display, const Display& first) {
    const int floor = first.nativeFrame.y + first.nativeFrame.height;
    return {rect.x / display.scale, (floor - rect.y - rect.height) / display.scale,
            rect.width / display.scale, rect.height / display.scale};
}

PixelRect nativeFromLocal(const VLRect& rect, const Display& display) {
    constexpr double tolerance = 1e-3;
    if (!std::isfinite(rect.x) || !std::isfinite(rect.y) || !std::isfinite(rect.width) ||
        !std::isfinite(rect.height) || rect.isEmpty())
        return {};
    const PixelRect& frame = display.nativeFrame;
    const auto low = [](double v, int limit) {
        return static_cast<int>(std::clamp(std::floor(v + tolerance), 0.0, double(limit)));
    };
    const auto high = [](double v, int limit) {
        return static_cast<int>(std::clamp(std::ceil(v - tolerance), 0.0, double(limit)));
    };
    const int left = low(rect.minX() * display.scale, frame.width);
    const int right = high(rect.maxX() * display.scale, frame.width);
    const int top = low(frame.height - rect.maxY() * display.scale, frame.height);
    const int bottom = high(frame.height - rect.minY() * display.scale, frame.height);
    if (right <= left || bottom <= top) return {};
    return {frame.x + left, frame.y + top, right - left, bottom - top};
}

}  // namespace vorla
