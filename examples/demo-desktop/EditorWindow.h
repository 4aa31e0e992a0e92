#pragma once

#include "examples/demo-desktop/DemoWindow.h"

namespace vorla::demo {

/// A light text editor with a file list and a page of travel notes.
class EditorWindow : public DemoWindow {
 public:
    EditorWindow();

 protected:
    void drawContents(QPainter& painter, const QSizeF& size) override;
};

}  // namespace vorla::demo
