#include "HostActions.h"

#include <QGuiApplication>
#include <QPalette>

#include "HostIcon.h"
#include "Translation.h"

HostActions::HostActions() {
    capture.setText(text("&Capture"));
    capture.setIcon(captureGlyph(QGuiApplication::palette().color(QPalette::Text)));
    capture.setShortcut(QKeySequence("Ctrl+N"));
    captureLater.setText(text("Capture in &3 s"));
    captureLater.setShortcut(QKeySequence("Ctrl+Shift+N"));
    openWindow.setText(text("Open the &Window"));
    preferences.setText(text("&Preferences…"));
    preferences.setIcon(QIcon::fromTheme("configure", QIcon::fromTheme("preferences-system")));
    preferences.setShortcut(QKeySequence("Ctrl+,"));
    about.setText(text("&About"));
    about.setIcon(QIcon::fromTheme("help-about"));
    quit.setText(text("&Quit"));
    quit.setIcon(QIcon::fromTheme("application-exit"));
    quit.setShortcut(QKeySequence::Quit);
    // They work in the window only, and are no news in the tray's menu.
    for (QAction* action : {&capture, &captureLater, &preferences, &quit})
        action->setShortcutVisibleInContextMenu(false);
}
