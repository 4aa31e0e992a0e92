#include "tests/imaging/pictures.h"

namespace vorla::test {
namespace {

QRgb pixel(int x, int y, Content content, unsigned noise, unsigned seed) {
    const unsigned block = (static_cast<unsigned>(x / 9) * 73856093U ^
                            static_cast<unsigned>(y / 7) * 19349663U ^ seed) *
                           2654435761U;
    switch (content) {
        case Content::Noise:
            return noise;
        case Content::Gradient:
            return qRgba(x & 255, (x + y) / 3 & 255, y & 255, 255 - (x / 8 & 127));
        case Content::TwoColors:
            return (block >> 20 & 1) != 0 ? 0xff202020 : 0xfff0f0f0;
        case Content::Blocks:
            return 0xff000000 | (block >> 8);
        case Content::Text:
            return noise % 7 == 0 && y % 20 < 12 ? 0xff000000 | (noise & 0x3f) * 0x040404U
                                                 : 0xffffffff;
        case Content::Flat:
            break;
    }
    return 0xff336699;
}

}  // namespace

QImage picture(QSize size, QImage::Format format, Content content, unsigned seed) {
    std::mt19937 random(seed);
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = pixel(x, y, content, static_cast<unsigned>(random()), seed);
    }
    return image.convertToFormat(format);
}

QImage straight(const QImage& image) {
    return image.convertToFormat(QImage::Format_ARGB32);
}

}  // namespace vorla::test
