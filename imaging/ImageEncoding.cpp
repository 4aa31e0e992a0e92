#include "imaging/ImageEncoding.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <exception>

#include "imaging/GifEncoding.h"
#include "imaging/ImageHelpers.h"
#include "imaging/Jpeg2000Encoding.h"
#include "imaging/TiffEncoding.h"
#include "imaging/png/PngEncoder.h"

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

}  // namespace

QByteArray encodedImage(const QImage& image, int fileType) {
    if (image.isNull()) return {};
    try {
        switch (fileType) {
            case ImageFileTypeTiff:
                return encodedTiff(image);
            case ImageFileTypeBmp:
                return writtenByQt(image, "bmp", -1);
            case ImageFileTypeGif:
                return encodedGif(image);
            case ImageFileTypeJpeg:
                return writtenByQt(image, "jpg", kJpegQuality);
            case ImageFileTypeJpeg2000:
                return encodedJpeg2000(image);
            default:
                return PngEncoder::encode(image);
        }
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace vorla
