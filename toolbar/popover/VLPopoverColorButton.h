#pragma once

#include <QColor>

#include "toolbar/popover/VLPickerButton.h"

/// An item of the menu of colours: a swatch on a line that lights up under the pointer.
class VLPopoverColorButton : public VLPickerButton {
 public:
    explicit VLPopoverColorButton(QWidget* superview = nullptr)
        : VLPickerButton({0.0, 0.0, 64.0, 20.0}, superview) {}

    [[nodiscard]] const QColor& selectedColor() const { return selectedColor_; }
    void setSelectedColor(const QColor& color);
    void configAppearanceAndLayout();

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    QColor selectedColor_;
    QColor hoverColor_;
    QColor borderColor_;
};
