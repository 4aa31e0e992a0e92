#include "capture/VLCapture.h"

#include "capture/VLCaptureManager.h"
#include "capture/base/StatisticDoor.h"
#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"
#include "platform/view/Application.h"
#include "platform/windowserver/WindowServer.h"

const char* const VorlaFrameworkVersionString = VORLA_VERSION;

void VLPrepareCapture() {
    // An application object is the host's to make, and it may not have come to that yet.
    if (!vorla::attachToApplication()) return;
    if (const auto server = vorla::WindowServer::shared()) server->prepare();
}

bool VLStartCapture(const std::shared_ptr<VLCaptureRequest>& request) {
    // The toolkit ends the process when it meets no display server, so ask first.
    if (vorla::WindowServer::shared()) vorla::ensureApplication();
    return VLCaptureManager::sharedInstance()->startCaptureByRequest(request);
}

bool VLIsCapturing() {
    return VLCaptureManager::sharedInstance()->isCapturing();
}

bool VLCancelCapture() {
    VLCaptureManager::sharedInstance()->cancelCapture();
    return true;
}

void VLStatEvent(int event) {
    vorla::fireStatisticEvent(event);
}

void VLSetInfoValue(std::string_view key, std::string value) {
    vorla::Bundle::framework().setInfoString(key, std::move(value));
}

void VLSetLogHandler(std::function<void(std::string_view)> handler) {
    vorla::setLogHandler(std::move(handler));
}

void VLSetPanelsShownHandler(std::function<void(int)> handler) {
    VLCaptureManager::setPanelsShownHandler(std::move(handler));
}
