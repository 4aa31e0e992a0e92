#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include <vorla/VLCapture.h>
#include "HostOptions.h"

/// What came of a capture.
struct Outcome {
    ExitStatus status = ExitStatus::Delivered;
    /// The picture, empty when there is none.
    QByteArray png = {};
    /// The file that it was saved to, or should have been; empty when it went to the clipboard.
    QString path = {};
    /// Why it did not start or was not written, in the user's language.
    QString reason = {};
};

/// The captures of this program: starts them, prints what it hears, writes the picture out where
/// the command line asks for it, and reports the outcome of each to the program.
class CaptureSession : public VLCaptureRequestDelegate {
 public:
    /// `ended` is called once for each capture that was started or refused.
    static std::shared_ptr<CaptureSession> create(const HostOptions& options,
                                                  std::function<void(const Outcome&)> ended);

    /// Starts a capture, unless one runs.
    void start();
    [[nodiscard]] VLCaptureRequest& request() { return *request_; }

    void captureRequestDidCancel(VLCaptureRequest& request) override;
    void captureRequestDidChange(VLCaptureRequest& request) override;
    void captureRequest(VLCaptureRequest& request, std::span<const std::byte> imageData,
                        const std::optional<std::string>& saveToPath,
                        const std::optional<std::string>& error) override;

 private:
    CaptureSession(const HostOptions& options, std::function<void(const Outcome&)> ended);
    void sessionEnded(const VLCaptureOutcome& end);

    QString outFile_;
    /// Why the picture at hand could not be written there.
    QString outReason_;
    std::function<void(const Outcome&)> ended_;
    std::shared_ptr<VLCaptureRequest> request_ = std::make_shared<VLCaptureRequest>();
};
