#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include <vorla/export.h>

class VLCaptureRequest;

/// How a host hears the outcome of a capture: exactly one of the three calls for each session,
/// unless the host itself ended it (`VLCancelCapture`) or the user closed the save dialog.
///
/// Override what is of interest. Calls come on the main thread, after the panels have left the
/// screen; a call may run a nested event loop, start the next capture, fork or end the program. A
/// running session keeps its delegate alive.
class VL_EXPORT VLCaptureRequestDelegate {
 public:
    VLCaptureRequestDelegate();
    virtual ~VLCaptureRequestDelegate();
    VLCaptureRequestDelegate(const VLCaptureRequestDelegate&) = delete;
    VLCaptureRequestDelegate& operator=(const VLCaptureRequestDelegate&) = delete;

    /// The user or the system cancelled. Not called for the host's own `VLCancelCapture`.
    virtual void captureRequestDidCancel(VLCaptureRequest& request);

    /// The user switched to the recorder, which is the host's own.
    virtual void captureRequestDidChange(VLCaptureRequest& request);

    /// A picture was delivered. `imageData` is the finished picture as PNG, valid during the call;
    /// empty only if there was no memory for it. `saveToPath` is the file that was written, UTF-8,
    /// absent when the picture went to the clipboard; it is reported even when writing failed, in
    /// which case the log holds the reason. `error` is always absent.
    virtual void captureRequest(VLCaptureRequest& request, std::span<const std::byte> imageData,
                                const std::optional<std::string>& saveToPath,
                                const std::optional<std::string>& error);
};

/// What a host asks for. Main thread. A change during a session holds from the next one on, except
/// `needSelectSavePath`, which is read when the user saves.
class VL_EXPORT VLCaptureRequest {
 public:
    VLCaptureRequest();
    ~VLCaptureRequest();
    VLCaptureRequest(const VLCaptureRequest&) = delete;
    VLCaptureRequest& operator=(const VLCaptureRequest&) = delete;

    /// One request for hosts that need no more; it lives as long as the process.
    static const std::shared_ptr<VLCaptureRequest>& sharedInstance();

    /// Whether the session offers the switch to the host's recorder. False at first.
    [[nodiscard]] bool showSwitch() const;
    /// Offers that switch, or not, from the next session on.
    void setShowSwitch(bool value);

    /// Whether "save" asks the user for a place; if not, it saves to the last one. True at first.
    [[nodiscard]] bool needSelectSavePath() const;
    /// Has "save" ask, or not, from the next saving on, also in the session that runs.
    void setNeedSelectSavePath(bool value);

    /// Receiver of the outcome, null if there is none or it no longer exists.
    [[nodiscard]] std::shared_ptr<VLCaptureRequestDelegate> delegate() const;
    /// Sets the receiver of the outcomes of later sessions; an empty pointer ends it. The request
    /// does not keep it alive, a running session does.
    void setDelegate(const std::weak_ptr<VLCaptureRequestDelegate>& delegate);

 private:
    struct State;
    std::unique_ptr<State> state_;
};
