#include "imaging/ImageHelpers.h"

#include <QPainter>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <memory>

#include "imaging/ImageEncoding.h"
#include "imaging/LanczosScaler.h"
#include "platform/base/VLLog.h"
#include "platform/base/files.h"

namespace vorla {
namespace {

VLCaptureError errorOfNumber(int number) {
    switch (number) {
        case EACCES:
        case EPERM:
        case EROFS:
            return VLCaptureErrorPermission;
        case EDQUOT:
        case EFBIG:
        case ENOSPC:
            return VLCaptureErrorNoSpace;
        case EISDIR:
        case ELOOP:
        case ENAMETOOLONG:
        case ENOENT:
        case ENOTDIR:
            return VLCaptureErrorPath;
        default:
            return VLCaptureErrorNotWritten;
    }
}

VLCaptureError fail(const char* reason, VLCaptureError error) {
    VLLogError("writeToFile failed with error %s", reason);
    return error;
}

VLCaptureError failWithNumber(int number) {
    return fail(std::strerror(number), errorOfNumber(number));
}

int pointsOf(int pixels, double devicePixelRatio) {
    return std::max(1, static_cast<int>(std::lround(pixels / devicePixelRatio)));
}

}  // namespace

VLSize pixelSize(const QImage& image) {
    return {static_cast<double>(image.width()), static_cast<double>(image.height())};
}

bool isHighReolution(const QImage& image) {
    return !image.isNull() && image.devicePixelRatio() > 1.0;
}

QImage imagePart(const QImage& image, const VLRect& rect) {
    if (image.isNull() || rect.isEmpty()) return {};
    const double scale = image.devicePixelRatio();
    // Noise of the division by the scale must not take in another row.
    constexpr double noise = 1e-3;
    const VLRect device =
        VLRect{rect.x * scale, rect.y * scale, rect.width * scale, rect.height * scale}
            .insetBy(noise, noise)
            .integral()
            .intersection({0.0, 0.0, static_cast<double>(image.width()),
                           static_cast<double>(image.height())});
    if (device.isEmpty()) return {};
    const int x = static_cast<int>(device.x);
    const int y = image.height() - static_cast<int>(device.maxY());
    const int bytesPerPixel = image.depth() / 8;
    auto keeper = std::make_unique<QImage>(image);
    QImage part(
        image.constScanLine(y) + static_cast<ptrdiff_t>(x) * bytesPerPixel,
        static_cast<int>(device.width), static_cast<int>(device.height), image.bytesPerLine(),
        image.format(),
        [](void* kept) { const std::unique_ptr<QImage> dropped(static_cast<QImage*>(kept)); },
        keeper.release());
    part.setDevicePixelRatio(scale);
    return part;
}

VLCaptureError saveToFile(const QImage& image, const std::string& path, int fileType) {
    if (image.isNull()) return VLCaptureErrorNoPicture;
    return saveToFile(encodedImage(image, fileType), path);
}

VLCaptureError saveToFile(const QByteArray& bytes, const std::string& path) {
    if (path.empty()) return VLCaptureErrorPath;
    const std::string target = expandTilde(path);
    if (bytes.isEmpty())
        return fail("the picture cannot be encoded in this format", VLCaptureErrorNotEncoded);
    const size_t slash = target.rfind('/');
    if (slash != std::string::npos && slash > 0 && !createDirectories(target.substr(0, slash)))
        return failWithNumber(errno);
    if (!writeFileAtomically(target, {bytes.constData(), static_cast<size_t>(bytes.size())}, 0666))
        return failWithNumber(errno);
    return VLCaptureErrorNone;
}

QImage convert2Xto1XImage(const QImage& image) {
    if (!isHighReolution(image)) return {};
    const double ratio = image.devicePixelRatio();
    return lanczosScaled(image, {pointsOf(image.width(), ratio), pointsOf(image.height(), ratio)});
}

QImage generateImageWithSize(const VLSize& size, double cornerRadius, double devicePixelRatio) {
    if (!(size.width > 0 && size.height > 0 && devicePixelRatio > 0)) return {};
    QImage image(static_cast<int>(std::ceil(size.width * devicePixelRatio)),
                 static_cast<int>(std::ceil(size.height * devicePixelRatio)),
                 QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return {};
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    const double radius = std::clamp(cornerRadius, 0.0, std::min(size.width, size.height) / 2);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF(0, 0, size.width, size.height), radius, radius);
    return image;
}

}  // namespace vorla
