#include "toolbar/FrostedGlass.h"

#include <gtest/gtest.h>

using vorla::frostedGlass;

TEST(FrostedGlass, KeepsAnEvenColourAndMixesTheTintIn) {
    for (const double scale : {1.0, 1.25, 2.0}) {
        QImage picture(400, 200, QImage::Format_RGB32);
        picture.fill(QColor(200, 100, 40));
        picture.setDevicePixelRatio(scale);
        // Reaching beyond the picture on two sides.
        const VLRect part{-10, -10, 60, 30};
        const QImage plain = frostedGlass(picture, part, 12, {});
        EXPECT_EQ(plain.size(), QSize(std::lround(60 * scale), std::lround(30 * scale)));
        EXPECT_EQ(plain.devicePixelRatio(), scale);
        const QImage tinted = frostedGlass(picture, part, 12, QColor(0, 0, 0, 128));
        for (const QPoint at : {QPoint(0, 0), plain.rect().center(), plain.rect().bottomRight()}) {
            EXPECT_EQ(plain.pixelColor(at), QColor(200, 100, 40));
            EXPECT_NEAR(tinted.pixelColor(at).red(), 100, 1);
            EXPECT_EQ(tinted.pixelColor(at).alpha(), 255);
        }
    }
}

TEST(FrostedGlass, DissolvesShapesAndKeepsThemInPlace) {
    QImage picture(300, 300, QImage::Format_RGB32);
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 300; ++x)
            picture.setPixel(x, y,
                             (x / 2 + y / 2) % 2 ? 0xffffffff
                             : y < 150           ? 0xff0000ff
                                                 : 0xff000000);
    const QImage glass = frostedGlass(picture, {50, 100, 200, 100}, 10, {});
    for (int x = 0; x < 200; ++x) EXPECT_NEAR(qRed(glass.pixel(x, 50)), 128, 6) << x;
    EXPECT_GT(qBlue(glass.pixel(100, 5)), 240) << "the upper half is blue";
    EXPECT_LT(qBlue(glass.pixel(100, 95)), 140);
    EXPECT_TRUE(frostedGlass({}, {0, 0, 10, 10}, 10, {}).isNull());
    EXPECT_TRUE(frostedGlass(picture, {0, 0, 0, 10}, 10, {}).isNull());
}
