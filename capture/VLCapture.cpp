#include <vorla/VLCapture.h>

#include <QApplication>
#include <QEventLoop>
#include <utility>

#include "capture/CaptureDoor.h"
#include "capture/VLCaptureManager.h"
#include "capture/VLCaptureWindow.h"
#include "crash/VLCrashCvrManager.h"
#include "platform/desktop/ClipboardKeeper.h"
#include "platform/view/Application.h"
#include "platform/view/drawing.h"
#include "platform/windowserver/WindowServer.h"
#include "selection/VLCaptureMagnifierView.h"
#include "theme/VLCaptureThemeManager.h"
#include "theme/VLCursor.h"

const char* const VorlaFrameworkVersionString = VORLA_VERSION;

namespace {

using vorla::MainLoop;

/// Fonts and drawings take longest where they are used first: here instead of in the first session.
void loadLook() {
    VLCursor::sharedInstance().cursorOfType(VLCursorTypeSightingTelescope);
    const auto label =
        VLCaptureThemeManager::sharedInstance().themedFontWithKey("VLCaptureSizeinfoView_Font");
    vorla::textSize(QStringLiteral("0123456789"), label.value_or(VLThemedFont{}).font());
    VLCaptureMagnifierView magnifier({}, {});
    magnifier.setMouseLocation({});
    static_cast<void>(magnifier.grab());
}

VLCaptureError start(const std::shared_ptr<VLCaptureRequest>& request, VLCaptureEndHandler ended,
                     MainLoop loop) {
    const VLCaptureError error = vorla::captureRefusal("VLStartCapture", loop);
    if (error != VLCaptureErrorNone) return error;
    // The toolkit ends the process when it meets no display server, so ask first.
    if (vorla::WindowServer::shared()) vorla::ensureApplication(loop);
    return VLCaptureManager::sharedInstance()->startCaptureByRequest(request, std::move(ended),
                                                                     loop);
}

/// A host without a loop does nothing for us once its call has returned: what is still to be done
/// is done now, and the picture on the clipboard is served by somebody else.
void settle(const VLCaptureOutcome& outcome) {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (outcome.kind == VLCaptureOutcomeDelivered && outcome.path.empty())
        vorla::givePictureAway(
            QByteArray::fromRawData(reinterpret_cast<const char*>(outcome.imageData.data()),
                                    static_cast<qsizetype>(outcome.imageData.size())));
    QGuiApplication::sync();
}

}  // namespace

void VLPrepareCapture() {
    const VLCaptureError error = vorla::captureRefusal(__func__);
    if (error == VLCaptureErrorOtherCopy) return;
    VLCrashCvrManager::startCrashReport();
    VLStartStatistics();
    if (error != VLCaptureErrorNone) return;
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
    return start(request, {}, MainLoop::Host) == VLCaptureErrorNone;
}

VLCaptureError VLStartCapture(const std::shared_ptr<VLCaptureRequest>& request,
                              VLCaptureEndHandler ended) {
    return start(request, std::move(ended), MainLoop::Host);
}

VLCaptureOutcome VLRunCapture(const std::shared_ptr<VLCaptureRequest>& request) {
    struct Run {
        QEventLoop* loop = nullptr;
        VLCaptureOutcome outcome{.kind = VLCaptureOutcomeCancelledByHost};
        bool isOver = false;
    };
    const auto run = std::make_shared<Run>();
    const VLCaptureError error = start(
        request,
        [run](const VLCaptureOutcome& outcome) {
            run->outcome = outcome;
            run->isOver = true;
            if (run->loop) run->loop->quit();
        },
        MainLoop::Ours);
    if (error != VLCaptureErrorNone) return {.kind = VLCaptureOutcomeRefused, .error = error};
    QEventLoop loop;
    run->loop = &loop;
    if (!run->isOver) loop.exec();
    run->loop = nullptr;
    // The host's application has quit, and this loop with it.
    if (!run->isOver) VLCancelCapture();
    if (vorla::isApplicationOurs()) settle(run->outcome);
    return std::move(run->outcome);
}

VLCaptureError VLLastCaptureError() {
    return VLCaptureManager::lastError();
}

bool VLIsCapturing() {
    return vorla::captureObstacle() == VLCaptureErrorNone
               ? VLCaptureManager::sharedInstance()->isCapturing()
               : VLCaptureManager::isAnyCapturing();
}

bool VLCancelCapture() {
    if (vorla::captureRefusal(__func__) == VLCaptureErrorNone)
        VLCaptureManager::sharedInstance()->cancelCapture();
    return true;
}

void VLSetPanelsShownHandler(std::function<void(int)> handler) {
    if (vorla::captureRefusal(__func__) != VLCaptureErrorNone) return;
    VLCaptureManager::setPanelsShownHandler(std::move(handler));
}
