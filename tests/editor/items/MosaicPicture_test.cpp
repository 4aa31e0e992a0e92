#include "editor/items/MosaicPicture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace {

using vorla::MosaicPicture;

QImage noise(QSize size, QImage::Format format) {
    std::mt19937 random(7);
    QImage image(size, format);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const QRgb color = random();
            // What an opaque picture has in its unused byte must not matter.
            line[x] = format == QImage::Format_RGB32 ? color : qPremultiply(color);
        }
    }
    return image;
}

/// Every pixel has the average of the pixels that share its square; squares are laid from the
/// middle of the picture outwards.
TEST(MosaicPicture, ShowsTheAverageOfEachSquare) {
    const QSize sizes[] = {{1, 1}, {7, 19}, {20, 20}, {21, 41}, {64, 37}, {203, 122}};
    const auto formats = {QImage::Format_RGB32, QImage::Format_ARGB32_Premultiplied};
    for (const QSize size : sizes)
        for (const QImage::Format format : formats) {
            const QImage image = noise(size, format);
            const auto mosaic = MosaicPicture::create(image);
            const auto square = [](int pixel, int extent) {
                return static_cast<int>(std::floor((pixel - std::floor(extent / 2.0 - 10)) / 20));
            };
            for (int y = 0; y < size.height(); y += 3)
                for (int x = 0; x < size.width(); x += 3) {
                    double sums[4] = {};
                    int count = 0;
                    for (int v = std::max(0, y - 20); v < std::min(size.height(), y + 20); ++v)
                        for (int u = std::max(0, x - 20); u < std::min(size.width(), x + 20); ++u) {
                            if (square(u, size.width()) != square(x, size.width()) ||
                                square(v, size.height()) != square(y, size.height()))
                                continue;
                            const QRgb p = reinterpret_cast<const QRgb*>(image.scanLine(v))[u];
                            const int alpha = format == QImage::Format_RGB32 ? 255 : qAlpha(p);
                            const int channels[] = {qRed(p), qGreen(p), qBlue(p), alpha};
                            for (int i = 0; i < 4; ++i) sums[i] += channels[i];
                            ++count;
                        }
                    const double at = x + 0.5;
                    QRgb shown = 0;
                    mosaic->colorsOfRow(y + 0.5, &at, 1, &shown);
                    const int channels[] = {qRed(shown), qGreen(shown), qBlue(shown),
                                            qAlpha(shown)};
                    for (int i = 0; i < 4; ++i)
                        ASSERT_NEAR(channels[i], sums[i] / count, 0.51)
                            << size.width() << "x" << size.height() << " at " << x << "," << y;
                }
        }
}

TEST(MosaicPicture, IsClearOutsideThePicture) {
    QImage image(50, 30, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.setDevicePixelRatio(2);
    const auto mosaic = MosaicPicture::create(image);
    EXPECT_EQ(mosaic->size(), (VLSize{25, 15}));
    const double xs[] = {-0.5, 0, 49.5, 50, 1e9};
    QRgb colors[5];
    mosaic->colorsOfRow(29.5, xs, 5, colors);
    EXPECT_THAT(colors, testing::ElementsAre(0U, 0xffff0000, 0xffff0000, 0U, 0U));
    for (const double y : {-0.5, 30.0}) {
        mosaic->colorsOfRow(y, xs, 5, colors);
        EXPECT_THAT(colors, testing::Each(0U));
    }
    EXPECT_EQ(MosaicPicture::create(QImage()), nullptr);
}

}  // namespace
