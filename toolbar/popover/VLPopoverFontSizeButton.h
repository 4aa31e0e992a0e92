#pragma once

#include <QColor>
#include <cstdint>

#include "toolbar/popover/VLPickerButton.h"

/// An item of the menu of font sizes.
class VLPopoverFontSizeButton : public VLPickerButton {
 public:
    explicit VLPopoverFontSizeButton(uint64_t fontSize, QWidget* superview = nullptr);

    [[nodiscard]] uint64_t fontSize() const { return fontSize_; }
    [[nodiscard]] bool isBorder() const { return isBorder_; }
    void setIsBorder(bool value);
    void configAppearanceAndLayout();

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;

 private:
    uint64_t fontSize_;
    bool isBorder_ = false;
    QColor hoverColor_;
    QColor borderColor_;
    QColor fillColor_;
    QColor fontColor_;
};
