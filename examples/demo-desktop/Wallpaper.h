#pragma once

#include "examples/demo-desktop/DemoWindow.h"

namespace vorla::demo {

/// The desktop itself: a window of the desktop type, below all others, on the primary screen.
class Wallpaper : public DemoWindow {
 public:
    Wallpaper();

 protected:
    void drawContents(QPainter& painter, const QSizeF& size) override;
};

}  // namespace vorla::demo
