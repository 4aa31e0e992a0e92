#include "imaging/ImagePart.h"

#include <memory>

namespace vorla {

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

}  // namespace vorla
