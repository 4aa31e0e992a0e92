#include "toolbar/popover/VLPopoverLineWidthButton.h"

#include <QPainter>

#include "platform/view/drawing.h"

void VLPopoverLineWidthButton::setSelectedImage(const QImage& image) {
    selectedImage_ = image;
    setNeedsDisplay();
}

void VLPopoverLineWidthButton::setNormalImage(const QImage& image) {
    normalImage_ = image;
    setNeedsDisplay();
}

void VLPopoverLineWidthButton::mouseUp(const VLMouseEvent& /*event*/) {
    setIsSelected(true);
    performAction();
}

void VLPopoverLineWidthButton::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    const QImage& image = isSelected() ? selectedImage_ : normalImage_;
    const QSizeF size = image.deviceIndependentSize();
    vorla::drawImage(painter, image, {0.0, 0.0, size.width(), size.height()});
}
