#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/base/export.h"

class VLCaptureRequest;

/// How a host hears the outcome of a capture. Override what is of interest; calls come on the main
/// thread, when the panels are gone.
class VL_EXPORT VLCaptureRequestDelegate {
 public:
    virtual ~VLCaptureRequestDelegate();

    /// The user or the system cancelled. Not called for the host's own `VLCancelCapture`.
    virtual void captureRequestDidCancel(VLCaptureRequest& request);

    /// The user switched to the recorder.
    virtual void captureRequestDidChange(VLCaptureRequest& request);

    /// A picture was delivered. `imageData` is the finished picture as PNG, valid during the call.
    /// `saveToPath` is the file that was written, absent when the picture went to the pasteboard;
    /// it is told even when writing failed, which is logged. `error` is always absent.
    virtual void captureRequest(VLCaptureRequest& request, std::span<const std::byte> imageData,
                                const std::optional<std::string>& saveToPath,
                                const std::optional<std::string>& error);
};

/// What a host asks for. Main thread.
class VL_EXPORT VLCaptureRequest {
 public:
    /// One request for hosts that need no more; it lives as long as the process.
    static const std::shared_ptr<VLCaptureRequest>& sharedInstance();

    /// Offer the switch to the recorder during the session.
    bool showSwitch = false;
    /// On "save", ask for a place; false saves to the last one without asking.
    bool needSelectSavePath = true;
    /// Receiver of the outcome. The request does not keep it alive, a running session does.
    std::weak_ptr<VLCaptureRequestDelegate> delegate;
};
