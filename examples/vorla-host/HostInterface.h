#pragma once

#include <QMenu>
#include <QPointer>
#include <QSystemTrayIcon>
#include <chrono>
#include <functional>
#include <optional>

#include "HostActions.h"
#include "HostSettings.h"
#include "HostWindow.h"

/// What the user sees of the program: its window, its entry in the tray, its dialogs.
class HostInterface : public QObject {
 public:
    using Capture = std::function<void(std::chrono::milliseconds delay)>;

    /// `capture` is how the user's wish for one is met, `applySettings` is called when the settings
    /// have changed. The settings outlive this.
    HostInterface(HostSettings& settings, Capture capture, std::function<void()> applySettings);

    void openWindow();
    [[nodiscard]] QWidget* window() { return &window_; }
    /// Takes the window off the screen for a capture. Whether it was there.
    bool stepAside();
    /// Brings it back, and shows what came of the capture. Where there is no tray the window opens.
    void captureEnded(const Outcome& outcome);

 private:
    void connectActions(const Capture& capture);
    void makeTrayEntry();
    void hideWindow();
    void windowClosed();
    void openPreferences();

    HostSettings& settings_;
    std::function<void()> applySettings_;
    HostActions actions_;
    HostWindow window_;
    QMenu trayMenu_;
    QSystemTrayIcon tray_;
    QPointer<QDialog> preferences_;
    /// Where the window was when it was hidden.
    std::optional<QPoint> place_;
    bool isAside_ = false;
};
