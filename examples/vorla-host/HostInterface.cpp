#include "HostInterface.h"

#include <QApplication>
#include <QWindow>

#include "AboutBox.h"
#include "HostIcon.h"
#include "PreferencesDialog.h"
#include "Translation.h"

HostInterface::HostInterface(HostSettings& settings, Capture capture,
                             std::function<void()> applySettings)
    : settings_(settings),
      applySettings_(std::move(applySettings)),
      window_(actions_, [this] { windowClosed(); }),
      tray_(hostIcon()) {
    connectActions(capture);
    makeTrayEntry();
}

void HostInterface::connectActions(const Capture& capture) {
    const auto on = [this](QAction& action, const auto& act) {
        QObject::connect(&action, &QAction::triggered, this, [act] { act(); });
    };
    on(actions_.capture, [capture] { capture({}); });
    on(actions_.captureLater, [capture] { capture(HostActions::later); });
    on(actions_.openWindow, [this] { openWindow(); });
    on(actions_.preferences, [this] { openPreferences(); });
    on(actions_.about, [this] {
        openWindow();
        openAboutBox(&window_);
    });
    on(actions_.quit, [] { QCoreApplication::exit(); });
    QObject::connect(&tray_, &QSystemTrayIcon::activated, this,
                     [this, capture](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) capture({});
                         if (reason == QSystemTrayIcon::MiddleClick) openWindow();
                     });
}

/// A tray that starts later takes the entry then.
void HostInterface::makeTrayEntry() {
    trayMenu_.addActions({&actions_.capture, &actions_.captureLater});
    trayMenu_.addSeparator();
    trayMenu_.addActions({&actions_.openWindow, &actions_.preferences, &actions_.about});
    trayMenu_.addSeparator();
    trayMenu_.addAction(&actions_.quit);
    tray_.setContextMenu(&trayMenu_);
    tray_.setToolTip(text("Vorla: click to capture"));
    tray_.show();
}

void HostInterface::openWindow() {
    isAside_ = false;
    // Else the window manager chooses a new place each time.
    if (place_ && !window_.isVisible()) window_.windowHandle()->setPosition(*place_);
    window_.setWindowState(window_.windowState() & ~Qt::WindowMinimized);
    window_.show();
    window_.raise();
    window_.activateWindow();
}

bool HostInterface::stepAside() {
    // Under a dialog the window may be what the user wants a picture of.
    const bool isInTheWay = window_.isVisible() && !window_.isMinimized();
    if (!isInTheWay || !settings_.stepsAside() || QApplication::activeModalWidget()) return false;
    isAside_ = true;
    hideWindow();
    return true;
}

void HostInterface::captureEnded(const Outcome& outcome) {
    window_.showOutcome(outcome);
    if (isAside_ || !QSystemTrayIcon::isSystemTrayAvailable()) {
        if (!window_.isVisible()) openWindow();
    }
    isAside_ = false;
}

void HostInterface::hideWindow() {
    place_ = window_.windowHandle()->position();
    window_.hide();
}

void HostInterface::windowClosed() {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        QCoreApplication::exit();
        return;
    }
    hideWindow();
    if (settings_.isFirstStayInTray())
        tray_.showMessage(text("Vorla stays in the tray"),
                          text("A click on its icon captures; its menu quits it."), hostIcon());
}

void HostInterface::openPreferences() {
    openWindow();
    if (preferences_) {
        preferences_->raise();
        preferences_->activateWindow();
        return;
    }
    preferences_ = new PreferencesDialog(settings_, &window_);
    preferences_->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(preferences_, &QDialog::accepted, this, [this] { applySettings_(); });
    preferences_->open();
}
