#pragma once

#include "examples/demo-desktop/DemoWindow.h"

namespace vorla::demo {

/// A dark terminal with the output of a few commands.
class TerminalWindow : public DemoWindow {
 public:
    TerminalWindow();

 protected:
    void drawContents(QPainter& painter, const QSizeF& size) override;
};

}  // namespace vorla::demo
