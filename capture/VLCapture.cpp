#include <vorla/VLCapture.h>

#include "capture/VLCaptureManager.h"
#include "capture/VLCaptureWindow.h"
#include "crash/VLCrashCvrManager.h"
#include "platform/view/Application.h"
#include "platform/view/drawing.h"
#include "platform/windowserver/WindowServer.h"
#include "selection/VLCaptureMagnifierView.h"
#include "theme/VLCaptureThemeManager.h"
#include "theme/VLCursor.h"

const char* const VorlaFrameworkVersionString = VORLA_VERSION;

namespace {

/// Fonts and drawings take longest where they are used first: here instead of in the first session.
void loadLook() {
    VLCursor::sharedInstance().cursorOfType(VLCursorTypeSightingTelescope);
    const auto label =
        VLCaptureThemeManager::sharedInstance().themedFontWithKey("VLCaptureSizeinfoView_Font");
    vorla::textSize(QStringLiteral("0123456789"), label.value_or(VLThemedFont{}).font());
    VLCaptureMagnifierView(QImage(), {}).setMouseLocation({});
}

}  // namespace

void VLPrepareCapture() {
    VLCrashCvrManager::startCrashReport();
    VLStartStatistics();
    const auto server = vorla::WindowServer::shared();
    if (!server) return;
    server->prepare();
    // An application object is the host's to make, and it may not have come to that yet; a host
    // without one has its pixels prepared all the same.
    if (!vorla::attachToApplication()) return;
    VLCaptureWindow::keepReady(server->displays());
    loadLook();
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

void VLSetPanelsShownHandler(std::function<void(int)> handler) {
    VLCaptureManager::setPanelsShownHandler(std::move(handler));
}
