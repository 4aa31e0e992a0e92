#pragma once

#include <QColor>

#include "toolbar/popover/VLPickerButton.h"

/// A square swatch of the Tern theme's row of colours; the chosen one has a white border.
class VLPopoverColorButtonForTern : public VLPickerButton {
 public:
    explicit VLPopoverColorButtonForTern(QWidget* superview) : VLPickerButton({}, superview) {}

    [[nodiscard]] const QColor& color() const { return color_; }
    void setColor(const QColor& color);

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void mouseUp(const VLMouseEvent& event) override;

 private:
    QColor color_;
    QColor borderColor_ = Qt::white;
};
