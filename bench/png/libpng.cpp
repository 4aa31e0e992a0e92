#include <png.h>

#include "bench/png/writers.h"

QByteArray vorla::writtenByLibpngInHaste(const QImage& image) {
    QByteArray bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &bytes,
        [](png_structp writer, png_bytep data, size_t count) {
            static_cast<QByteArray*>(png_get_io_ptr(writer))
                ->append(reinterpret_cast<const char*>(data), static_cast<qsizetype>(count));
        },
        nullptr);
    png_set_compression_level(png, 1);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
    const QImage rows = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_RGBA8888
                                                                      : QImage::Format_RGB888);
    png_set_IHDR(png, info, static_cast<png_uint_32>(rows.width()),
                 static_cast<png_uint_32>(rows.height()), 8,
                 rows.hasAlphaChannel() ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < rows.height(); ++y) png_write_row(png, rows.constScanLine(y));
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return bytes;
}
