#pragma once

#include "examples/demo-desktop/DemoWindow.h"

namespace vorla::demo {

/// A conversation in English and Chinese.
class NotesWindow : public DemoWindow {
 public:
    NotesWindow();

 protected:
    void drawContents(QPainter& painter, const QSizeF& size) override;
};

}  // namespace vorla::demo
