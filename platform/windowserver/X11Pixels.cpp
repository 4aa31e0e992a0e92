#include "platform/windowserver/X11Pixels.h"

#include <algorithm>
#include <cstring>

namespace vorla {

QImage::Format imageFormatOf(PixelLayout layout) {
    return layout == PixelLayout::Argb32 ? QImage::Format_ARGB32_Premultiplied
                                         : QImage::Format_RGB32;
}

void finishPixels(uint32_t* pixels, size_t count, PixelLayout layout, AlphaByte alpha) {
    if (layout == PixelLayout::Rgb30) {
        for (size_t i = 0; i < count; ++i) {
            const uint32_t p = pixels[i];
            pixels[i] = 0xff000000U | (p >> 6 & 0xff0000U) | (p >> 4 & 0xff00U) | (p >> 2 & 0xffU);
        }
    } else if (layout == PixelLayout::Rgb24 && alpha == AlphaByte::Set) {
        for (size_t i = 0; i < count; ++i) pixels[i] |= 0xff000000U;
    }
}

QImage imageOfDrawable(X11Connection& connection, xcb_drawable_t drawable, const PixelRect& rect,
                       PixelLayout layout) {
    constexpr int stripBytes = 8 << 20;
    if (layout == PixelLayout::Unsupported || rect.width <= 0 || rect.height <= 0) return {};
    QImage image(rect.width, rect.height, imageFormatOf(layout));
    if (image.isNull()) return {};
    const int rows = std::max(1, stripBytes / (rect.width * 4));
    for (int y = 0; y < rect.height; y += rows) {
        const int height = std::min(rows, rect.height - y);
        const auto cookie =
            xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, drawable,
                          static_cast<int16_t>(rect.x), static_cast<int16_t>(rect.y + y),
                          static_cast<uint16_t>(rect.width), static_cast<uint16_t>(height), ~0U);
        const auto strip = connection.reply(&xcb_get_image_reply, cookie);
        const size_t bytes = static_cast<size_t>(rect.width) * height * 4;
        if (!strip || static_cast<size_t>(xcb_get_image_data_length(strip.get())) < bytes)
            return {};
        auto* target = reinterpret_cast<uint32_t*>(image.scanLine(y));
        std::memcpy(target, xcb_get_image_data(strip.get()), bytes);
        finishPixels(target, bytes / 4, layout, AlphaByte::Set);
    }
    return image;
}

}  // namespace vorla
