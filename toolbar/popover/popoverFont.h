#pragma once

#include <QFont>

/// The system's font in the size (points of the screen) that the pickers write in.
[[nodiscard]] QFont popoverFont(double size);
