#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

#include <vorla/VLCapture.h>
#include "HostOptions.h"

/// What came of a capture.
struct Outcome {
    ExitStatus status = ExitStatus::Delivered;
    /// The delivered picture, empty when there is none.
    QByteArray png = {};
    /// The file that it was saved to, empty when it went to the clipboard.
    QString savedTo = {};
    /// The file that could not be written, empty when all could.
    QString notWritten = {};
};

/// The captures of this program: starts them, prints what it hears, writes the picture out where
/// the command line asks for it, and tells the program the outcome of each.
class CaptureSession : public QObject, public VLCaptureRequestDelegate {
 public:
    /// `ended` is called once for each capture that was started or refused.
    static std::shared_ptr<CaptureSession> create(const HostOptions& options,
                                                  std::function<void(const Outcome&)> ended);
    ~CaptureSession() override;

    /// Starts a capture, unless one runs.
    void start();
    /// Ends the one that runs.
    void cancel();
    [[nodiscard]] VLCaptureRequest& request() { return *request_; }

    void captureRequestDidCancel(VLCaptureRequest& request) override;
    void captureRequestDidChange(VLCaptureRequest& request) override;
    void captureRequest(VLCaptureRequest& request, std::span<const std::byte> imageData,
                        const std::optional<std::string>& saveToPath,
                        const std::optional<std::string>& error) override;

    /// Watches for the component's save dialog: nobody is told when the user closes it.
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    CaptureSession(const HostOptions& options, std::function<void(const Outcome&)> ended);
    void expectSaveDialog(bool expected);

    QString outFile_;
    std::function<void(const Outcome&)> ended_;
    std::shared_ptr<VLCaptureRequest> request_ = std::make_shared<VLCaptureRequest>();
    uint64_t finishTicket_ = 0;
};
