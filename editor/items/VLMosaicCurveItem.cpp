#include "editor/items/VLMosaicCurveItem.h"

#include <QPainter>
#include <utility>
#include <vector>

#include "editor/items/MosaicPicture.h"

namespace {

std::shared_ptr<vorla::MosaicPicture>& sharedPicture() {
    static std::shared_ptr<vorla::MosaicPicture> picture;
    return picture;
}

/// The squares as a device shows them whose pixels are `fromDevice` of the view's coordinates.
vorla::StrokeLayer::Ink mosaicInk(vorla::MosaicPicture& picture, const QTransform& fromDevice) {
    return [&picture, fromDevice](const QRect& pixels, QRgb* colors) {
        const double scale = picture.pixelsPerPoint();
        std::vector<double> xs(static_cast<size_t>(pixels.width()));
        for (size_t i = 0; i < xs.size(); ++i)
            xs[i] =
                fromDevice.map(QPointF(pixels.x() + static_cast<double>(i) + 0.5, 0)).x() * scale;
        for (int row = 0; row < pixels.height(); ++row, colors += pixels.width()) {
            const double y = fromDevice.map(QPointF(0, pixels.y() + row + 0.5)).y();
            picture.colorsOfRow((picture.size().height - y) * scale, xs.data(), pixels.width(),
                                colors);
        }
    };
}

}  // namespace

VLMosaicCurveItem::VLMosaicCurveItem(std::weak_ptr<VLEditItemSuperView> superView,
                                     VLPoint centerPoint, VLSize size)
    : VLCurveItem(std::move(superView), centerPoint, size) {
    setSupportType(VLEditSupportAddPoint);
}

std::shared_ptr<VLEditItem> VLMosaicCurveItem::makeSameClass() const {
    return std::make_shared<VLMosaicCurveItem>(superView(), center(), size());
}

void VLMosaicCurveItem::setOriginalImage(const QImage& image) {
    sharedPicture() = vorla::MosaicPicture::create(image);
}

void VLMosaicCurveItem::prepare() {
    if (const auto picture = orinialCIImage()) picture->prepare();
}

const std::shared_ptr<vorla::MosaicPicture>& VLMosaicCurveItem::orinialCIImage() {
    return sharedPicture();
}

VLSize VLMosaicCurveItem::originalImageSize() {
    return sharedPicture() ? sharedPicture()->size() : VLSize{};
}

void VLMosaicCurveItem::setNormalStrokeColor(const QColor& /*color*/) {}

void VLMosaicCurveItem::drawGraph(QPainter& painter, const VLRect& dirtyRect) {
    if (const auto picture = orinialCIImage())
        drawStroke(painter, dirtyRect, mosaicInk(*picture, painter.deviceTransform().inverted()));
}
