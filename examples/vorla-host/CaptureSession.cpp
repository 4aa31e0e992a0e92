#include "CaptureSession.h"

#include <cstdio>
#include <utility>

#include "Events.h"
#include "PictureFile.h"
#include "Translation.h"

namespace {

template <typename Bytes>
QByteArray byteArray(const Bytes& bytes) {
    return QByteArray(reinterpret_cast<const char*>(bytes.data()),
                      static_cast<qsizetype>(bytes.size()));
}

ExitStatus statusOf(VLCaptureOutcomeKind kind) {
    switch (kind) {
        case VLCaptureOutcomeDelivered:
            return ExitStatus::Delivered;
        case VLCaptureOutcomeRecorder:
            return ExitStatus::Switched;
        case VLCaptureOutcomeFailed:
            return ExitStatus::NotWritten;
        case VLCaptureOutcomeRefused:
            return ExitStatus::NotStarted;
        case VLCaptureOutcomeCancelled:
        case VLCaptureOutcomeCancelledByHost:
        case VLCaptureOutcomeSaveDismissed:
            break;
    }
    return ExitStatus::Cancelled;
}

}  // namespace

std::shared_ptr<CaptureSession> CaptureSession::create(const HostOptions& options,
                                                       std::function<void(const Outcome&)> ended) {
    std::shared_ptr<CaptureSession> session(new CaptureSession(options, std::move(ended)));
    session->request_->setDelegate(session);
    return session;
}

CaptureSession::CaptureSession(const HostOptions& options,
                               std::function<void(const Outcome&)> ended)
    : outFile_(options.outFile), ended_(std::move(ended)) {
    request_->setShowSwitch(options.showSwitch);
}

void CaptureSession::start() {
    const VLCaptureError error =
        VLStartCapture(request_, [this](const VLCaptureOutcome& end) { sessionEnded(end); });
    if (error == VLCaptureErrorNone) return;
    report("refused");
    if (error == VLCaptureErrorAlreadyCapturing) return;
    ended_({.status = ExitStatus::NotStarted, .reason = text(VLCaptureErrorText(error))});
}

void CaptureSession::captureRequestDidCancel(VLCaptureRequest& /*request*/) {
    report("cancelled");
}

void CaptureSession::captureRequestDidChange(VLCaptureRequest& /*request*/) {
    report("changed");
}

void CaptureSession::captureRequest(VLCaptureRequest& /*request*/,
                                    std::span<const std::byte> imageData,
                                    const std::optional<std::string>& saveToPath,
                                    const std::optional<std::string>& /*error*/) {
    // Written before the event says so.
    if (!outFile_.isEmpty()) outReason_ = writePicture(byteArray(imageData), outFile_);
    report(QJsonObject{
        {"event", "finished"},
        {"bytes", static_cast<qint64>(imageData.size())},
        {"path", saveToPath ? QJsonValue(QString::fromStdString(*saveToPath)) : QJsonValue()}});
}

/// Hears more than the delegate, whose calls make the events: that the user closed the save dialog,
/// and what went wrong.
void CaptureSession::sessionEnded(const VLCaptureOutcome& end) {
    Outcome outcome{.status = statusOf(end.kind),
                    .png = byteArray(end.imageData),
                    .path = QString::fromStdString(end.path)};
    if (end.error != VLCaptureErrorNone) outcome.reason = text(VLCaptureErrorText(end.error));
    if (const QString reason = std::exchange(outReason_, {}); !reason.isEmpty())
        outcome = {ExitStatus::NotWritten, outcome.png, outFile_, reason};
    if (!outcome.reason.isEmpty())
        std::fprintf(stderr, "vorla-host: %s%s%s\n", qPrintable(outcome.path),
                     outcome.path.isEmpty() ? "" : ": ", qPrintable(outcome.reason));
    ended_(outcome);
}
