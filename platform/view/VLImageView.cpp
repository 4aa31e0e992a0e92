#include "platform/view/VLImageView.h"

#include "platform/view/drawing.h"

VLImageView::VLImageView(VLRect frame, QWidget* superview) : VLView(frame, superview) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void VLImageView::setImage(const QImage& image) {
    image_ = image;
    setNeedsDisplay();
}

void VLImageView::drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) {
    vorla::drawImage(painter, image_, bounds());
}
