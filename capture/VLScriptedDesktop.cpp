#include <vorla/VLScriptedDesktop.h>

#include "capture/VLCaptureManager.h"
#include "platform/base/VLLog.h"
#include "platform/windowserver/MemoryWindowServer.h"

void VLSetScriptedDesktop(const std::vector<VLScriptedScreen>& screens,
                          const std::vector<VLScriptedWindow>& windows) {
    if (VLCaptureManager::isAnyCapturing()) {
        VLLogError("%s - not during a capture", __func__);
        return;
    }
    if (screens.empty()) {
        vorla::WindowServer::setShared(nullptr);
        return;
    }
    std::vector<std::pair<vorla::PixelRect, double>> displays;
    for (const VLScriptedScreen& screen : screens)
        displays.push_back({{screen.x, screen.y, screen.width, screen.height}, screen.scale});
    std::vector<vorla::MemoryWindowServer::Window> list;
    for (const VLScriptedWindow& scripted : windows) {
        vorla::MemoryWindowServer::Window window;
        window.entry.number = scripted.number;
        window.entry.ownerName = scripted.owner;
        window.nativeFrame = {scripted.x, scripted.y, scripted.width, scripted.height};
        window.colour = scripted.color;
        list.push_back(std::move(window));
    }
    const auto server = std::make_shared<vorla::MemoryWindowServer>();
    server->setDisplays(displays);
    server->setWindows(std::move(list));
    vorla::WindowServer::setShared(server);
}
