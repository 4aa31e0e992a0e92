#include "windows/VLCaptureUtilities.h"

#include <gtest/gtest.h>

#include "imaging/ImageHelpers.h"

namespace {

constexpr VLRect screen{0, 0, 100, 50};
constexpr VLRect away{-10, 20, 100, 50};  // a rectangle whose origin is not zero

TEST(Utilities, MovesAndCutsRectangles) {
    struct Case {
        VLRect rect;
        VLRect in;
        VLRect moved;
        VLRect cut;
    };
    const Case cases[] = {
        {{10, 10, 20, 20}, screen, {10, 10, 20, 20}, {10, 10, 20, 20}},
        {{0, 0, 100, 50}, screen, {0, 0, 100, 50}, {0, 0, 100, 50}},
        {{80, 30, 20, 20}, screen, {80, 30, 20, 20}, {80, 30, 20, 20}},  // touching is inside
        {{80.5, 10, 20, 20}, screen, {79, 10, 20, 20}, {80.5, 10, 19.5, 20}},
        {{10, 40, 20, 20}, screen, {10, 29, 20, 20}, {10, 40, 20, 10}},
        {{-5, -7, 20, 20}, screen, {0, 0, 20, 20}, {0, 0, 15, 13}},
        {{-5, 10, 200, 20}, screen, {-101, 10, 200, 20}, {0, 10, 100, 20}},  // larger than inside
        {{200, 10, 20, 20}, screen, {79, 10, 20, 20}, {200, 10, -100, 20}},
        {{-20, 15, 5, 5}, away, {-10, 20, 5, 5}, {-10, 20, -5, 0}},
        {{88, 68, 5, 5}, away, {84, 64, 5, 5}, {88, 68, 2, 2}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(VLCaptureUtilities::fixedRect(c.rect, c.in), c.moved);
        EXPECT_EQ(VLCaptureUtilities::cropRect(c.rect, c.in), c.cut);
    }
}

TEST(Utilities, KeepsPointsInside) {
    const std::tuple<VLPoint, VLRect, VLPoint> cases[] = {
        {{-1, -1}, screen, {0, 0}},      {{99, 49}, screen, {99, 49}},
        {{99.5, 100}, screen, {99, 49}}, {{-5, 0}, away, {0, 0}},  // zero, not the origin
        {{200, 200}, away, {89, 69}},
    };
    for (const auto& [point, in, expected] : cases)
        EXPECT_EQ(VLCaptureUtilities::fixedPoint(point, in), expected);
}

TEST(Utilities, TellsTransparentPixels) {
    QImage image(2, 1, QImage::Format_ARGB32_Premultiplied);
    image.setPixel(0, 0, 0x02000000U);  // 2 / 255 is below a hundredth
    image.setPixel(1, 0, 0x03000000U);
    EXPECT_TRUE(VLCaptureUtilities::isTransparentImage(image, {0, 0}));
    EXPECT_FALSE(VLCaptureUtilities::isTransparentImage(image, {1.9, 0.9}));
    EXPECT_TRUE(VLCaptureUtilities::isTransparentImage(image, {2, 0}));
    QImage opaque(1, 1, QImage::Format_RGB32);
    opaque.setPixel(0, 0, 0x00000000U);
    EXPECT_FALSE(VLCaptureUtilities::isTransparentImage(opaque, {0, 0}));
}

TEST(ImagePart, ReadsTheOriginalsPixels) {
    for (const double scale : {1.0, 2.0}) {
        QImage image(40, 20, QImage::Format_RGB32);
        for (int i = 0; i < 800; ++i) image.setPixel(i % 40, i / 40, 0xff000000U + uint32_t(i));
        image.setDevicePixelRatio(scale);
        const std::pair<VLRect, QRect> cases[] = {
            {{0, 0, 40 / scale, 20 / scale}, {0, 0, 40, 20}},
            {{2, 3, 4, 5},
             QRect(int(2 * scale), int(20 - 8 * scale), int(4 * scale), int(5 * scale))},
            {{-5, -5, 6, 6}, QRect(0, int(20 - scale), int(scale), int(scale))},
        };
        for (const auto& [rect, device] : cases) {
            const QImage part = vorla::imagePart(image, rect);
            EXPECT_EQ(part, image.copy(device));
            EXPECT_EQ(part.devicePixelRatio(), scale);
        }
        for (const VLRect& nothing : {VLRect{}, VLRect{50, 0, 5, 5}, VLRect{5, 5, 3, -1}})
            EXPECT_TRUE(vorla::imagePart(image, nothing).isNull());
        QImage part = vorla::imagePart(image, {0, 0, 2, 2});
        const uint32_t before = image.pixel(0, 19);
        part.fill(Qt::red);  // a part that is drawn on becomes a picture of its own
        EXPECT_EQ(image.pixel(0, 19), before);
        part = vorla::imagePart(std::exchange(image, {}), {0, 0, 2, 2});
        EXPECT_EQ(part.pixel(0, part.height() - 1), before);  // and keeps what it reads alive
    }
}

}  // namespace
