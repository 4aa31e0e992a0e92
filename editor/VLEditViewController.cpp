#include "editor/VLEditViewController.h"

#include <QPainter>
#include <cmath>

#include "editor/devicePainting.h"
#include "editor/items/VLMosaicCurveItem.h"
#include "platform/base/VLLog.h"
#include "platform/view/FrozenScreen.h"

/// Shows the picture pixel for pixel.
class VLEditViewController::BackgroundImageView : public VLView {
 public:
    explicit BackgroundImageView(const VLRect& frame) : VLView(frame) {}

    [[nodiscard]] const QImage& image() const { return image_; }
    void setImage(const QImage& image) {
        image_ = image;
        setOpaque(!image.hasAlphaChannel());
        setNeedsDisplay();
    }
    /// A picture of that many pixels, the caller's own.
    [[nodiscard]] QImage imageOfSize(QSize pixels) const {
        return image_.size() == pixels
                   ? image_
                   : image_.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }

 protected:
    void drawRect(QPainter& painter, const VLRect& /*dirtyRect*/) override {
        if (image_.isNull()) return;
        const vorla::DevicePixelScope pixels(painter, bounds().size());
        if (pixels.sizeOfView() != image_.size()) {
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(QRect(QPoint(), pixels.sizeOfView()), image_, image_.rect());
            return;
        }
        const QRegion region = pixels.regionOf(rectsBeingDrawn());
        if (image_.format() == QImage::Format_RGB32) {
            vorla::FrozenScreen(image_).draw(painter, region);
            return;
        }
        if (!image_.hasAlphaChannel()) painter.setCompositionMode(QPainter::CompositionMode_Source);
        for (const QRect& part : region) painter.drawImage(part, image_, part);
    }

 private:
    QImage image_;
};

VLEditViewController::VLEditViewController(const VLRect& frame)
    : backgroundImageView_(new BackgroundImageView(frame)),
      editView_(new VLEditView(VLRect::make({}, frame.size()), backgroundImageView_)) {
    editView_->setAutoresizing(VLView::WidthSizable | VLView::HeightSizable);
}

VLEditViewController::~VLEditViewController() {
    VLMosaicCurveItem::setOriginalImage({});
    if (backgroundImageView_) {
        backgroundImageView_->hide();
        backgroundImageView_->removeFromSuperview();
        backgroundImageView_->deleteLater();
    }
    VLLog("%s", __func__);
}

VLView* VLEditViewController::view() const {
    return backgroundImageView_;
}

void VLEditViewController::setBackgroundImage(const QImage& image) {
    if (!backgroundImageView_ || !backgroundImageView_->image().isNull() || image.isNull()) return;
    backgroundImageView_->setImage(image);
    VLMosaicCurveItem::setOriginalImage(image);
    prepareTool();
}

/// Most sessions do without a mosaic.
void VLEditViewController::prepareTool() const {
    if (editView_ && editView_->graphType() == VLEditGraphTypeMosaicPen)
        VLMosaicCurveItem::prepare();
}

void VLEditViewController::graphTypeDidChange(int64_t graphType) {
    if (editView_) editView_->setGraphType(graphType);
    prepareTool();
}

void VLEditViewController::colorDidChange(const QColor& color) {
    if (editView_) editView_->setNormalStrokeColor(color);
}

void VLEditViewController::widthDidChange(uint64_t width) {
    if (editView_) editView_->setNormalStrokeWidth(static_cast<double>(width));
}

void VLEditViewController::undo() {
    if (editView_) editView_->undo();
}

QImage VLEditViewController::imageEdited() {
    VLLog("<VLEditViewController> %s", __func__);
    if (!editView_ || !backgroundImageView_) return {};
    editView_->unfocus();
    const double scale = editView_->backingScale();
    QImage image = backgroundImageView_->imageOfSize(
        QSize(static_cast<int>(std::lround(editView_->bounds().width * scale)),
              static_cast<int>(std::lround(editView_->bounds().height * scale))));
    if (image.isNull()) return {};
    // Where nothing was drawn the picture is the background itself, and no memory is spent on it.
    if (editView_->itemArray().empty() && image.devicePixelRatio() == scale) return image;
    image = image.copy();
    image.setDevicePixelRatio(1.0);
    QPainter painter(&image);
    editView_->drawItems(painter, image.rect(), scale);
    painter.end();
    image.setDevicePixelRatio(scale);
    return image;
}
