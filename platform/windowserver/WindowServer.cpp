#include "platform/windowserver/WindowServer.h"

#include <vorla/VLCaptureOutcome.h>

#include <cstdlib>
#include <utility>

#include "platform/base/VLLog.h"
#include "platform/base/raii.h"
#include "platform/windowserver/X11WindowServer.h"

namespace vorla {
namespace {

std::shared_ptr<WindowServer>& instance() {
    static NoDestructor<std::shared_ptr<WindowServer>> server;
    return *server;
}

}  // namespace

std::unique_ptr<WindowServer> WindowServer::connect() {
    const char* display = std::getenv("DISPLAY");
    if (display == nullptr || *display == '\0') {
        VLLogError("window server: DISPLAY names no X server%s",
                   std::getenv("WAYLAND_DISPLAY") != nullptr ? ", and Wayland is not served" : "");
        return nullptr;
    }
    return X11WindowServer::create();
}

VLCaptureError WindowServer::obstacle() {
    return VLCaptureErrorNone;
}

std::optional<VLPoint> WindowServer::pointerLocation(uint32_t /*displayID*/) {
    return std::nullopt;
}

void WindowServer::finish(const std::function<bool()>& /*meanwhile*/) {}

std::shared_ptr<WindowServer> WindowServer::shared() {
    if (!instance() || !instance()->isConnected()) instance() = connect();
    return instance();
}

void WindowServer::setShared(std::shared_ptr<WindowServer> server) {
    instance() = std::move(server);
}

}  // namespace vorla
