#pragma once

#include <QColor>

#include "platform/view/VLView.h"

/// The plain rounded panel behind the drop-down menus.
class VLRoundRectView : public VLView {
 public:
    explicit VLRoundRectView(const VLRect& frame = {}, QWidget* superview = nullptr)
        : VLView(frame, superview) {}

    /// An invalid colour leaves the inside, or the border, out.
    void setBackgroundColor(const QColor& color);
    void setBorderColor(const QColor& color);
    void setCornerRadius(double radius) { cornerRadius_ = radius; }

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    QColor backgroundColor_;
    QColor borderColor_;
    double cornerRadius_ = 0.0;
};
