#include "capture/CaptureDoor.h"

#include <vorla/VLCaptureOutcome.h>

#include "capture/VLCaptureManager.h"
#include "platform/base/LibraryCopy.h"
#include "platform/base/VLLog.h"

namespace vorla {

VLCaptureError captureObstacle(MainLoop loop) {
    static constexpr LibraryCopy self = {"libVorla", VORLA_VERSION};
    if (!isServingCopy(VLCaptureInProcess, self) || !isServingServices())
        return VLCaptureErrorOtherCopy;
    return isCaptureThread(loop) ? VLCaptureErrorNone : VLCaptureErrorWrongThread;
}

VLCaptureError captureRefusal(const char* function, MainLoop loop) {
    const VLCaptureError error = captureObstacle(loop);
    if (error == VLCaptureErrorNone) return error;
    VLLogError("%s - %s", function, VLCaptureErrorText(error));
    VLCaptureManager::setLastError(error);
    return error;
}

}  // namespace vorla
