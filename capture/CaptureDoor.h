#pragma once

#include "platform/view/Application.h"

namespace vorla {

/// Why this copy of the library, or the calling thread, may not capture. Any thread.
VLCaptureError captureObstacle(MainLoop loop = MainLoop::Host);

/// The same, logged and left for `VLLastCaptureError`.
VLCaptureError captureRefusal(const char* function, MainLoop loop = MainLoop::Host);

}  // namespace vorla
