#include "Program.h"

#include <QApplication>
#include <QDialog>
#include <cstdio>

#include <vorla/CrashReporter.h>
#include <vorla/VLCapture.h>
#include "Events.h"

namespace {

/// How long it takes until a hidden window is off the screen, also where it fades.
constexpr std::chrono::milliseconds fading{250};

void setInfo(std::string_view key, const QString& value) {
    if (!value.isEmpty()) VLSetInfoValue(key, value.toStdString());
}

}  // namespace

Program::Program(const HostOptions& options)
    : options_(options), session_(CaptureSession::create(options, [this](const Outcome& outcome) {
          sessionEnded(outcome);
      })) {
    delay_.setSingleShot(true);
    QObject::connect(&delay_, &QTimer::timeout, this, [this] { session_->start(); });
}

void Program::start() {
    applySettings();
    settings_.applyToServices();
    setInfo(VLInfoKeyStatisticsURL, options_.statURL);
    setInfo(VLInfoKeyCrashSyncURL, options_.crashURL);
    prepareComponent();
    if (!options_.once && !options_.background) {
        interface_ = std::make_unique<HostInterface>(
            settings_, [this](auto delay) { capture(delay); }, [this] { applySettings(); });
        if (!options_.capture) interface_->openWindow();
    }
    if (options_.commands) commands_.emplace([this](const QByteArray& line) { obey(line); });
    QTimer::singleShot(0, this, [this] { begin(); });
}

void Program::prepareComponent() {
    VLSetPanelsShownHandler([options = options_](int screens) {
        report(QJsonObject{{"event", "panels"}, {"screens", screens}});
        if (options.crash && options.crashWhenPanels) options.crash->provoke();
    });
    // Counted before their upload, which begins now.
    if (const auto stored = CrashReporter::sharedInstance().storedCrashCount(); stored > 0)
        report(QJsonObject{{"event", "crashes"}, {"stored", static_cast<qint64>(stored)}});
    VLPrepareCapture();
}

void Program::begin() {
    report("ready");
    if (options_.crash && !options_.crashWhenPanels) options_.crash->provoke();
    if (!options_.once && !options_.capture) return;
    if (options_.delay.count() > 0)
        capture(options_.delay);
    else
        session_->start();
}

void Program::capture(std::chrono::milliseconds delay) {
    if (VLIsCapturing()) return;
    const bool steppedAside = interface_ && interface_->stepAside();
    delay_.start(steppedAside ? std::max(delay, fading) : delay);
}

void Program::sessionEnded(const Outcome& outcome) {
    if (interface_) interface_->captureEnded(outcome);
    if (options_.once) exitWith(outcome.status);
}

void Program::obeyLaterStart(const QByteArray& wish) {
    if (!interface_) return;
    const QList<QByteArray> words = wish.split(' ');
    if (words.first() == "capture")
        capture(std::chrono::milliseconds(words.value(1).toInt()));
    else if (words.first() == "show")
        interface_->openWindow();
}

void Program::obey(const QByteArray& command) {
    if (command == "capture")
        session_->start();
    else if (command == "cancel")
        VLCancelCapture();
    else if (command == "state")
        report(QJsonObject{{"event", "state"}, {"capturing", VLIsCapturing()}});
    else if (command == "dialog")
        openDialog();
    else if (command == "quit")
        exitWith(options_.once ? ExitStatus::Cancelled : ExitStatus::Delivered);
    else
        std::fprintf(stderr, "unknown command: %s\n", command.constData());
}

void Program::openDialog() {
    auto* dialog = new QDialog(interface_ ? interface_->window() : nullptr);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->resize(300, 200);
    dialog->setWindowModality(Qt::ApplicationModal);
    dialog->show();
}

void Program::applySettings() {
    settings_.applyTo(session_->request());
    setInfo(VLInfoKeySupplyID, options_.supplyID);
    if (options_.silentSave) session_->request().setNeedSelectSavePath(false);
}

/// Not at once: the main loop may not run yet, and the component is still in its call.
void Program::exitWith(ExitStatus status) {
    QTimer::singleShot(0, qApp, [status] { QCoreApplication::exit(static_cast<int>(status)); });
}
