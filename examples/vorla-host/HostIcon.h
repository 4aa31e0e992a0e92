#pragma once

#include <QIcon>

/// The program's icon, painted for each size on whole pixels, so that it is crisp in a tray too.
/// vorla-host.svg is the same drawing for the desktop.
QIcon hostIcon();

/// The drawing alone, in one colour, for buttons and menus.
QIcon captureGlyph(const QColor& color);
