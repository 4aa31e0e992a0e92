#pragma once

#include <QIcon>
#include <QPalette>

/// The program's icon, painted for each size on whole pixels, so that it is crisp in a tray too.
/// vorla-host.svg is the same drawing for the desktop.
QIcon hostIcon();

/// The drawing alone for buttons and menus, in the palette's colours of these roles; `active` is
/// that of a chosen menu entry or a button under the pointer.
QIcon captureGlyph(QPalette::ColorRole normal, QPalette::ColorRole active);
