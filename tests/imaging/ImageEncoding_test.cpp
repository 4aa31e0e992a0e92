#include "imaging/ImageEncoding.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/imaging/decoders.h"
#include "tests/imaging/pictures.h"

namespace vorla {
namespace {

using test::Content;
using test::Decoded;

Decoded decoded(const QByteArray& file, int fileType) {
    switch (fileType) {
        case ImageFileTypeTiff:
            return test::decodedTiff(file);
        case ImageFileTypeJpeg2000:
            return test::decodedJpeg2000(file);
        case ImageFileTypeGif:
            return test::decodedByQt(file, "gif");
        case ImageFileTypeBmp:
            return test::decodedByQt(file, "bmp");
        case ImageFileTypeJpeg:
            return test::decodedByQt(file, "jpg");
        default:
            return test::decodedByQt(file, "png");
    }
}

double meanError(const QImage& a, const QImage& b) {
    double sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                   std::abs(qBlue(p) - qBlue(q));
        }
    return sum / 3 / a.width() / a.height();
}

constexpr int kAllTypes[] = {ImageFileTypeTiff, ImageFileTypeBmp, ImageFileTypeGif,
                             ImageFileTypeJpeg, ImageFileTypePng, ImageFileTypeJpeg2000};
constexpr QSize kSizes[] = {{1, 1}, {1, 9}, {9, 1}, {2, 3}, {37, 41}, {320, 200}};

TEST(ImageEncoding, losslessTypesKeepEveryPixel) {
    for (const int type : {ImageFileTypeTiff, ImageFileTypePng, ImageFileTypeJpeg2000})
        for (const QSize size : kSizes)
            for (const QImage::Format format :
                 {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied})
                for (const Content content : {Content::Noise, Content::Gradient, Content::Text}) {
                    const QImage image = test::picture(size, format, content);
                    EXPECT_TRUE(decoded(encodedImage(image, type), type).image ==
                                test::straight(image))
                        << "type " << type << ", " << size.width() << "x" << size.height()
                        << ", format " << format;
                }
    const QImage opaque = test::picture({37, 41}, QImage::Format_RGB32, Content::Noise);
    EXPECT_TRUE(decoded(encodedImage(opaque, ImageFileTypeBmp), ImageFileTypeBmp).image ==
                test::straight(opaque));
}

TEST(ImageEncoding, signaturesTellTheType) {
    const struct {
        int type;
        QByteArray start;
    } rows[] = {
        {0, "II*"},          {1, "BM"},       {2, "GIF89a"},
        {3, "\xff\xd8\xff"}, {4, "\x89PNG"},  {6, "\x89PNG"},
        {9, "\x89PNG"},      {-1, "\x89PNG"}, {5, QByteArray("\0\0\0\x0cjP  ", 8)},
    };
    const QImage image = test::picture({20, 10}, QImage::Format_RGB32, Content::Gradient);
    for (const auto& row : rows)
        EXPECT_TRUE(encodedImage(image, row.type).startsWith(row.start)) << row.type;
    for (const int type : kAllTypes) EXPECT_TRUE(encodedImage(QImage(), type).isEmpty()) << type;
}

TEST(ImageEncoding, resolutionFollowsTheDevicePixelRatio) {
    for (const double ratio : {1.0, 1.5, 2.0})
        for (const int type : kAllTypes) {
            QImage image = test::picture({40, 30}, QImage::Format_RGB32, Content::Gradient);
            image.setDevicePixelRatio(ratio);
            const QByteArray file = encodedImage(image, type);
            const Decoded back = decoded(file, type);
            EXPECT_EQ(back.image.size(), QSize(40, 30)) << type;
            const bool isTold =
                ratio > 1 || (type != ImageFileTypePng && type != ImageFileTypeJpeg2000);
            EXPECT_FALSE(!isTold && (file.contains("pHYs") || file.contains("resc"))) << type;
            if (!isTold || type == ImageFileTypeGif) continue;
            EXPECT_NEAR(back.dotsPerInch, 72 * ratio, 0.6) << type;
        }
}

TEST(ImageEncoding, jpegAndBmpLieOnWhite) {
    for (const int type : {ImageFileTypeJpeg, ImageFileTypeBmp})
        for (const double ratio : {1.0, 2.0}) {
            QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            for (int y = 0; y < 64; ++y)
                for (int x = 32; x < 64; ++x) image.setPixel(x, y, qRgba(0, 0, 128, 128));
            image.setDevicePixelRatio(ratio);
            const QImage back = decoded(encodedImage(image, type), type).image;
            EXPECT_EQ(qRed(back.pixel(5, 60)), 255) << type;
            EXPECT_NEAR(qRed(back.pixel(58, 60)), 127, 4) << type;
            EXPECT_NEAR(qBlue(back.pixel(58, 60)), 255, 4) << type;
        }
    const QImage photo = test::picture({320, 200}, QImage::Format_RGB32, Content::Gradient);
    EXPECT_LT(meanError(decoded(encodedImage(photo, 3), 3).image, photo), 3.0);
}

TEST(ImageEncoding, gifIsExactUpTo256Colors) {
    const struct {
        const char* name;
        int colors;
        bool clearCorner;
        bool exact;
    } rows[] = {
        {"one", 1, false, true},
        {"two", 2, false, true},
        {"256", 256, false, true},
        {"257", 257, false, false},
        {"255 and clear", 255, true, true},
        {"256 and clear", 256, true, false},
    };
    for (const auto& row : rows) {
        QImage image(100, 60, QImage::Format_ARGB32);
        for (int i = 0; i < 100 * 60; ++i)
            image.setPixel(i % 100, i / 100,
                           0xff000000U | static_cast<QRgb>(i % row.colors * 0x0000fd + 0x204060));
        for (int x = 0; row.clearCorner && x < 60; x += 2)
            image.setPixel(x, 0, 0x7fffffff & 0xffff);
        const QImage back = decoded(encodedImage(image, ImageFileTypeGif), ImageFileTypeGif).image;
        for (int x = 0; row.clearCorner && x < 60; x += 2) image.setPixel(x, 0, 0);
        ASSERT_EQ(back.size(), image.size()) << row.name;
        constexpr auto plain = QImage::Format_ARGB32_Premultiplied;  // clear is clear
        EXPECT_EQ(back.convertToFormat(plain) == image.convertToFormat(plain), row.exact)
            << row.name;
        EXPECT_LT(meanError(back, image), 3.0) << row.name;
    }
}

TEST(ImageEncoding, gifOfManyColorsStaysTrueOnAverage) {
    const QImage image = test::picture({400, 300}, QImage::Format_RGB32, Content::Gradient);
    const QImage back = decoded(encodedImage(image, ImageFileTypeGif), ImageFileTypeGif).image;
    ASSERT_EQ(back.size(), image.size());
    EXPECT_LT(meanError(back, image), 12.0);
    // Dithering trades place for tone: blocks keep their mean colour.
    for (int y = 0; y + 50 <= 300; y += 50)
        for (int x = 0; x + 50 <= 400; x += 50) {
            double difference = 0;
            for (int i = 0; i < 2500; ++i)
                difference += qGreen(image.pixel(x + i % 50, y + i / 50)) -
                              qGreen(back.pixel(x + i % 50, y + i / 50));
            EXPECT_LT(std::abs(difference) / 2500, 2.5) << x << ' ' << y;
        }
    // A flat ground among many colours stays flat.
    QImage mixed = image;
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 400; ++x) mixed.setPixel(x, y, 0xfff3f4f6);
    const QImage flat = decoded(encodedImage(mixed, ImageFileTypeGif), ImageFileTypeGif).image;
    for (int x = 0; x < 400; ++x) EXPECT_EQ(flat.pixel(x, 150), flat.pixel(0, 100));
}

TEST(ImageEncoding, refusesWhatGifCannotHold) {
    EXPECT_TRUE(encodedImage(QImage(65536, 1, QImage::Format_RGB32), ImageFileTypeGif).isEmpty());
}

}  // namespace
}  // namespace vorla
