#pragma once

#include <QTimer>
#include <chrono>
#include <memory>
#include <optional>

#include "CaptureSession.h"
#include "CommandReader.h"
#include "HostInterface.h"
#include "HostOptions.h"
#include "HostSettings.h"

/// One run of the program: what the command line asked for, put to work.
class Program : public QObject {
 public:
    explicit Program(const HostOptions& options);

    /// Before the main loop.
    void start();
    /// Meets a later start's wish: "show", or "capture" with a number of milliseconds to wait.
    void obeyLaterStart(const QByteArray& wish);

 private:
    void prepareComponent();
    void begin();
    void capture(std::chrono::milliseconds delay);
    void sessionEnded(const Outcome& outcome);
    void obey(const QByteArray& command);
    void openDialog();
    void applySettings();
    void exitWith(ExitStatus status);

    HostOptions options_;
    HostSettings settings_;
    std::shared_ptr<CaptureSession> session_;
    std::unique_ptr<HostInterface> interface_;
    std::optional<CommandReader> commands_;
    QTimer delay_;
};
