#include "platform/windowserver/MemoryWindowServer.h"

#include <QColor>
#include <algorithm>

#include "platform/windowserver/displayLayout.h"

namespace vorla {

void MemoryWindowServer::setDisplays(
    const std::vector<std::pair<PixelRect, double>>& nativeFramesAndScales) {
    std::vector<NativeMonitor> monitors;
    for (const auto& [frame, scale] : nativeFramesAndScales)
        monitors.push_back({"memory-" + std::to_string(monitors.size() + 1), frame, scale});
    displays_ = layOutDisplays(monitors);
    for (size_t i = 0; i < displays_.size(); ++i)
        displays_[i].displayID = static_cast<uint32_t>(i + 1);
}

uint32_t MemoryWindowServer::desktopPixel(int nativeX, int nativeY) {
    const auto x = static_cast<uint32_t>(nativeX);
    const auto y = static_cast<uint32_t>(nativeY);
    return 0xff000000U | (x & 255) << 16 | (y & 255) << 8 | ((x * 7 + y * 13) & 255);
}

const Display* MemoryWindowServer::find(uint32_t displayID) const {
    const auto found = std::find_if(displays_.begin(), displays_.end(),
                                    [&](const Display& d) { return d.displayID == displayID; });
    return found == displays_.end() ? nullptr : &*found;
}

const MemoryWindowServer::Window* MemoryWindowServer::findWindow(uint32_t number) const {
    if (!windows_) return nullptr;
    const auto found = std::find_if(windows_->begin(), windows_->end(),
                                    [&](const Window& w) { return w.entry.number == number; });
    return found == windows_->end() ? nullptr : &*found;
}

std::optional<std::vector<ServerWindow>> MemoryWindowServer::windows(uint32_t displayID) {
    ++windowLists;
    const Display* display = find(displayID);
    if (display == nullptr || !windows_) return std::nullopt;
    std::vector<ServerWindow> result;
    for (const Window& window : *windows_) {
        result.push_back(window.entry);
        result.back().bounds = pointsFromNative(window.nativeFrame, *display, displays_.front());
    }
    return result;
}

QImage MemoryWindowServer::imageOfDisplay(uint32_t displayID, VLRect rect) {
    ++displayGrabs;
    const Display* display = find(displayID);
    if (display == nullptr || picturesFail_) return {};
    const PixelRect native = nativeFromLocal(rect, *display);
    if (native.width == 0) return {};
    const PixelRect& origin = displays_.front().nativeFrame;
    QImage image(native.width, native.height, QImage::Format_RGB32);
    for (int y = 0; y < native.height; ++y) {
        auto* line = reinterpret_cast<uint32_t*>(image.scanLine(y));
        for (int x = 0; x < native.width; ++x) {
            const QPoint at(native.x + x - origin.x, native.y + y - origin.y);
            line[x] = desktop_.valid(at) ? desktop_.pixel(at) | 0xff000000U
                                         : desktopPixel(native.x + x, native.y + y);
        }
    }
    image.setDevicePixelRatio(display->scale);
    return image;
}

ArrivingImage MemoryWindowServer::arrivingImageOfDisplay(uint32_t displayID) {
    const Display* display = find(displayID);
    if (display == nullptr) return {};
    return {imageOfDisplay(displayID, VLRect::make({}, display->frame.size())), nullptr};
}

QImage MemoryWindowServer::imageOfWindow(uint32_t displayID, uint32_t number, WindowPicture picture,
                                         const QImage&) {
    ++windowGrabs;
    const Display* display = find(displayID);
    const Window* window = findWindow(number);
    if (display == nullptr || window == nullptr || picturesFail_) return {};
    const QSize frame(window->nativeFrame.width, window->nativeFrame.height);
    const int shadow = picture == WindowPicture::FrameWithShadow ? window->shadow : 0;
    const int title = picture == WindowPicture::Content ? window->title : 0;
    const bool isOpaque = window->alpha >= 1.0 && shadow == 0;
    QImage image(frame.width() + 2 * shadow, frame.height() - title + 2 * shadow,
                 isOpaque ? QImage::Format_RGB32 : QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QColor colour = QColor::fromRgba(window->colour);
    colour.setAlphaF(static_cast<float>(window->alpha));
    const uint32_t pixel = isOpaque ? window->colour | 0xff000000U : qPremultiply(colour.rgba());
    for (int y = shadow; y < image.height() - shadow; ++y) {
        auto* line = reinterpret_cast<uint32_t*>(image.scanLine(y));
        std::fill(line + shadow, line + image.width() - shadow, pixel);
    }
    image.setDevicePixelRatio(display->scale);
    return image;
}

double MemoryWindowServer::alphaAtCentre(uint32_t number) {
    ++alphaReads;
    const Window* window = findWindow(number);
    return window == nullptr ? 1.0 : window->alpha;
}

}  // namespace vorla
