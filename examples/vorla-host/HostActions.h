#pragma once

#include <QAction>
#include <chrono>

/// What the user can have the program do, for the window's menus and the tray's.
struct HostActions {
    QAction capture;
    QAction captureLater;
    QAction openWindow;
    QAction preferences;
    QAction about;
    QAction quit;

    /// How long `captureLater` waits.
    static constexpr std::chrono::milliseconds later{3000};

    HostActions();
};
