#pragma once

#include <QColor>
#include <QImage>
#include <cstdint>

#include "toolbar/popover/VLPickerButton.h"

/// The part of a picker that opens its menu: a colour swatch (type 4), a box with a font size
/// (type 8), or the arrow next to them (type 0). It acts at a release inside.
class VLPopoverButton : public VLPickerButton {
 public:
    VLPopoverButton(const VLRect& frame, uint64_t type, QWidget* superview)
        : VLPickerButton(frame, superview), type_(type) {}

    [[nodiscard]] uint64_t type() const { return type_; }
    [[nodiscard]] const QColor& selectedColor() const { return selectedColor_; }
    void setSelectedColor(const QColor& color);
    [[nodiscard]] uint64_t fontSize() const { return fontSize_; }
    void setFontSize(uint64_t size);
    void configAppearanceAndLayout();

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void mouseUp(const VLMouseEvent& event) override;

 private:
    uint64_t type_;
    QColor selectedColor_;
    uint64_t fontSize_ = 0;
    QColor colorBorderColor_;
    QColor fontBorderColor_;
    QColor fontColor_;
    QImage arrowImage_;
};
