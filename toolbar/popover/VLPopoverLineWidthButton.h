#pragma once

#include <QImage>
#include <cstdint>

#include "toolbar/popover/VLPickerButton.h"

/// One width of the line width picker: a picture at its own size in the lower left corner.
class VLPopoverLineWidthButton : public VLPickerButton {
 public:
    explicit VLPopoverLineWidthButton(QWidget* superview) : VLPickerButton({}, superview) {}

    [[nodiscard]] uint64_t width() const { return width_; }
    void setWidth(uint64_t width) { width_ = width; }
    void setSelectedImage(const QImage& image);
    void setNormalImage(const QImage& image);

 protected:
    void drawRect(QPainter& painter, const VLRect& dirtyRect) override;
    void mouseUp(const VLMouseEvent& event) override;

 private:
    uint64_t width_ = 0;
    QImage selectedImage_;
    QImage normalImage_;
};
