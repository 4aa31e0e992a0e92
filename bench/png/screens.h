#pragma once

#include <QImage>

namespace vorla {

/// Made-up screens as people capture them, the same on every run. A QGuiApplication must exist.

/// A browser with a large photograph (light, shapes, texture and sensor noise) next to a column of
/// text.
QImage photographicScreen(QSize size);

/// Windows, lists and an editor: flat areas, frames and anti-aliased text in a few colours.
QImage flatScreen(QSize size);

}  // namespace vorla
