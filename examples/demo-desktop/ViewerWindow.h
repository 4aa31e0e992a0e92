#pragma once

#include <QImage>
#include <vector>

#include "examples/demo-desktop/DemoWindow.h"

namespace vorla::demo {

/// A dark picture viewer: one landscape large, and the album as a strip below it.
class ViewerWindow : public DemoWindow {
 public:
    ViewerWindow();

 protected:
    void drawContents(QPainter& painter, const QSizeF& size) override;

 private:
    void drawStrip(QPainter& painter, const QRectF& strip);

    QImage picture_;
    std::vector<QImage> album_;
};

}  // namespace vorla::demo
