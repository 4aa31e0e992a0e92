#include "platform/view/dimming.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

/// Every width ends in another way in the vectorised rows.
TEST(Dimming, BlendsEveryPixelAsTheFormulaTells) {
    std::mt19937 random(7);
    QImage source(37, 5, QImage::Format_RGB32);
    for (int i = 0; i < 37 * 5; ++i) source.setPixel(i % 37, i / 37, random());
    for (const QColor& color : {QColor(0, 0, 0, 128), QColor(8, 11, 16, 133), QColor(255, 255, 255),
                                QColor(255, 255, 255, 1), QColor(200, 100, 50, 0)}) {
        for (int width = 1; width <= 36; ++width) {
            QImage target(width, 3, QImage::Format_RGB32);
            target.fill(Qt::magenta);
            vorla::copyDimmed(source, {1, 2, width, 3}, color, vorla::PixelTarget(target));
            for (int i = 0; i < width * 3; ++i) {
                const QRgb from = source.pixel(1 + i % width, 2 + i / width);
                const QRgb to = target.pixel(i % width, i / width);
                const auto expectBlend = [&](int under, int over, int got) {
                    const double exact = under + (over - under) * double(color.alphaF());
                    EXPECT_LE(std::abs(got - exact), 1.5) << under << " at alpha " << color.alpha();
                };
                expectBlend(qRed(from), color.red(), qRed(to));
                expectBlend(qGreen(from), color.green(), qGreen(to));
                expectBlend(qBlue(from), color.blue(), qBlue(to));
                ASSERT_EQ(qAlpha(to), 255);
            }
        }
    }
}

}  // namespace
