#include "HostActions.h"

#include "HostIcon.h"
#include "Translation.h"

HostActions::HostActions() {
    capture.setText(text("&Capture"));
    capture.setIcon(captureGlyph(QPalette::Text, QPalette::HighlightedText));
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
    quit.setShortcut(QKeySequence("Ctrl+Q"));
    // They work in the window only, and are no news in the tray's menu.
    for (QAction* action : {&capture, &captureLater, &preferences, &quit})
        action->setShortcutVisibleInContextMenu(false);
}
