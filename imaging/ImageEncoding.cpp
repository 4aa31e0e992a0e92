#include "imaging/ImageEncoding.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <exception>

#include "imaging/ImageHelpers.h"
#include "imaging/PictureModule.h"
#include "imaging/png/PngEncoder.h"
#include "platform/base/Module.h"

namespace vorla {
namespace {

constexpr int kJpegQuality = 92;

QImage laidOnWhite(const QImage& image) {
    if (!image.hasAlphaChannel()) return image;
    QImage opaque(image.size(), QImage::Format_RGB32);
    if (opaque.isNull()) return opaque;
    opaque.setDevicePixelRatio(image.devicePixelRatio());
    opaque.fill(Qt::white);
    QPainter(&opaque).drawImage(QPointF(), image);
    return opaque;
}

QByteArray writtenByQt(const QImage& image, const char* format, int quality) {
    QImage opaque = laidOnWhite(image);
    if (opaque.isNull()) return {};
    opaque.setDotsPerMeterX(dotsPerMeter(image));
    opaque.setDotsPerMeterY(dotsPerMeter(image));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    return writer.write(opaque) ? bytes : QByteArray();
}

QByteArray encodedByModule(const char* module, const QImage& image) {
    QByteArray bytes;
    auto* encode = moduleFunction<EncodePicture>(module, "vorlaEncodePicture");
    if (encode) encode(image, bytes);
    return bytes;
}

}  // namespace

QByteArray encodedImage(const QImage& image, int fileType) {
    if (image.isNull()) return {};
    try {
        switch (fileType) {
            case ImageFileTypeTiff:
                return encodedByModule("tiff", image);
            case ImageFileTypeBmp:
                return writtenByQt(image, "bmp", -1);
            case ImageFileTypeGif:
                return encodedByModule("gif", image);
            case ImageFileTypeJpeg:
                return writtenByQt(image, "jpg", kJpegQuality);
            case ImageFileTypeJpeg2000:
                return encodedByModule("jpeg2000", image);
            default:
                return PngEncoder::encode(image);
        }
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace vorla
