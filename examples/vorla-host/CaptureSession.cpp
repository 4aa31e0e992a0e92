#include "CaptureSession.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <cstdio>
#include <utility>

#include <vorla/VLNotifications.h>
#include "Events.h"
#include "PictureFile.h"

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
    finishTicket_ = VLAddNotificationObserver(
        NotificationCaptureDidFinish,
        [this](std::string_view /*name*/, const VLNotificationObject& object) {
            const bool* const saves = std::get_if<bool>(&object);
            expectSaveDialog(saves && *saves && request_->needSelectSavePath());
        });
}

CaptureSession::~CaptureSession() {
    VLRemoveNotificationObserver(finishTicket_);
}

void CaptureSession::start() {
    if (VLStartCapture(request_)) return;
    report("refused");
    if (!VLIsCapturing()) ended_({ExitStatus::NotStarted});
}

void CaptureSession::cancel() {
    const bool ran = VLIsCapturing();
    VLCancelCapture();
    if (ran) ended_({ExitStatus::Cancelled});
}

void CaptureSession::captureRequestDidCancel(VLCaptureRequest& /*request*/) {
    report("cancelled");
    ended_({ExitStatus::Cancelled});
}

void CaptureSession::captureRequestDidChange(VLCaptureRequest& /*request*/) {
    report("changed");
    ended_({ExitStatus::Switched});
}

void CaptureSession::captureRequest(VLCaptureRequest& /*request*/,
                                    std::span<const std::byte> imageData,
                                    const std::optional<std::string>& saveToPath,
                                    const std::optional<std::string>& /*error*/) {
    expectSaveDialog(false);
    Outcome outcome;
    outcome.png = QByteArray(reinterpret_cast<const char*>(imageData.data()),
                             static_cast<qsizetype>(imageData.size()));
    if (saveToPath) outcome.savedTo = QString::fromStdString(*saveToPath);
    QString reason;
    if (saveToPath && !QFileInfo(outcome.savedTo).size()) outcome.notWritten = outcome.savedTo;
    if (!outFile_.isEmpty()) reason = writePicture(outcome.png, outFile_);
    if (!reason.isEmpty()) outcome.notWritten = outFile_;
    if (!outcome.notWritten.isEmpty()) {
        outcome.status = ExitStatus::NotWritten;
        std::fprintf(stderr, "vorla-host: cannot write %s: %s\n", qPrintable(outcome.notWritten),
                     reason.isEmpty() ? "the line above has the reason" : qPrintable(reason));
    }
    report(QJsonObject{{"event", "finished"},
                       {"bytes", static_cast<qint64>(outcome.png.size())},
                       {"path", saveToPath ? QJsonValue(outcome.savedTo) : QJsonValue()}});
    ended_(outcome);
}

void CaptureSession::expectSaveDialog(bool expected) {
    if (expected)
        QCoreApplication::instance()->installEventFilter(this);
    else
        QCoreApplication::instance()->removeEventFilter(this);
}

bool CaptureSession::eventFilter(QObject* watched, QEvent* event) {
    auto* const dialog =
        event->type() == QEvent::Show ? qobject_cast<QFileDialog*>(watched) : nullptr;
    if (dialog) {
        expectSaveDialog(false);
        QObject::connect(dialog, &QDialog::rejected, this, [this] {
            report("cancelled");
            ended_({ExitStatus::Cancelled});
        });
    }
    return QObject::eventFilter(watched, event);
}
