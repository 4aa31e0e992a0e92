#include "imaging/png/PngEncoder.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImageWriter>
#include <atomic>
#include <thread>
#include <vector>

#include "imaging/png/PngFilter.h"
#include "imaging/png/PngFilterKernels.h"
#include "platform/base/DispatchQueue.h"
#include "tests/imaging/decoders.h"
#include "tests/imaging/pictures.h"

namespace vorla {
namespace {

using test::Content;

constexpr Content kContents[] = {Content::Noise,     Content::Gradient, Content::Flat,
                                 Content::TwoColors, Content::Blocks,   Content::Text};
constexpr QImage::Format kFormats[] = {QImage::Format_RGB32, QImage::Format_ARGB32,
                                       QImage::Format_ARGB32_Premultiplied};

char colorType(const QByteArray& file) {
    return file.at(25);
}

QByteArray writtenByQt(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, "png").write(image);
    return bytes;
}

void expectSamePixels(const QImage& image, const std::string& what) {
    const QImage pixels = test::straight(image);
    for (const bool mayIndex : {true, false}) {
        const QByteArray file = PngEncoder::encode(image, {.mayIndexColors = mayIndex});
        ASSERT_TRUE(test::decodedPng(file).image == pixels) << what;
        ASSERT_TRUE(test::decodedByQt(file, "png").image == pixels) << what;
    }
}

std::string described(QSize size, QImage::Format format, Content content) {
    return std::to_string(size.width()) + "x" + std::to_string(size.height()) + " format " +
           std::to_string(format) + " content " + std::to_string(static_cast<int>(content));
}

TEST(PngEncoder, keepsEveryPixel) {
    const QSize sizes[] = {{1, 1},      {1, 2},      {2, 1},       {3, 3},
                           {5, 700},    {700, 5},    {31, 33},     {257, 255},
                           {1, 70'000}, {70'000, 1}, {100'003, 7}, {1001, 801}};
    for (const QSize size : sizes)
        for (const QImage::Format format : kFormats)
            for (const Content content : kContents)
                expectSamePixels(test::picture(size, format, content),
                                 described(size, format, content));
}

TEST(PngEncoder, keepsEveryPixelOfRandomPictures) {
    std::mt19937 random(4711);
    for (unsigned round = 0; round < 150; ++round) {
        const QSize size(1 + static_cast<int>(random() % 400),
                         1 + static_cast<int>(random() % 400));
        const auto format = kFormats[random() % std::size(kFormats)];
        const auto content = kContents[random() % std::size(kContents)];
        QImage image = test::picture(size, format, content, round);
        const QRect part(static_cast<int>(random() % size.width()), 0,
                         1 + static_cast<int>(random() % size.width()), size.height());
        const QImage other = test::picture(size, format, kContents[random() % 6], round + 1);
        for (int y = 0; y < size.height(); ++y)
            for (int x = part.left(); x <= part.right() && x < size.width(); ++x)
                reinterpret_cast<QRgb*>(image.scanLine(y))[x] =
                    reinterpret_cast<const QRgb*>(other.constScanLine(y))[x];
        expectSamePixels(image,
                         described(size, format, content) + " round " + std::to_string(round));
    }
}

TEST(PngEncoder, unpremultipliesAsQtDoes) {
    QImage image(256, 256, QImage::Format_ARGB32_Premultiplied);
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int value = 0; value < 256; ++value)
            image.setPixel(
                value, alpha,
                qRgba(std::min(value, alpha), std::min(255 - value, alpha), alpha, alpha));
    const QImage ours = test::decodedPng(PngEncoder::encode(image)).image;
    EXPECT_TRUE(ours == test::decodedPng(writtenByQt(image)).image);
}

TEST(PngEncoder, choosesTheSmallestKindOfPixel) {
    struct Row {
        const char* name;
        QImage image;
        char colorType;
    };
    QImage opaque = test::picture({300, 200}, QImage::Format_ARGB32, Content::Noise);
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 300; ++x) opaque.setPixel(x, y, opaque.pixel(x, y) | 0xff000000);
    QImage nearlyOpaque = opaque;
    nearlyOpaque.setPixel(299, 199, 0xfe123456);
    QImage unusedAlpha(300, 200, QImage::Format_RGB32);
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 300; ++x)
            reinterpret_cast<QRgb*>(unusedAlpha.scanLine(y))[x] = opaque.pixel(x, y) & 0xffffff;
    const QImage colors = test::picture({300, 200}, QImage::Format_RGB32, Content::TwoColors);
    const Row rows[] = {
        {"opaque pixels with an alpha channel", opaque, 2},
        {"one pixel not opaque", nearlyOpaque, 6},
        {"no alpha channel, unused byte zero", unusedAlpha, 2},
        {"few colours", colors, 3},
        {"a tiny picture", colors.copy(0, 0, 20, 20), 2},
    };
    for (const Row& row : rows) {
        const QByteArray file = PngEncoder::encode(row.image);
        EXPECT_EQ(colorType(file), row.colorType) << row.name;
        EXPECT_TRUE(test::decodedPng(file).image == test::straight(row.image)) << row.name;
    }
}

TEST(PngEncoder, indexesUpTo256Colors) {
    for (const int colors : {255, 256, 257}) {
        QImage image(128, 128, QImage::Format_RGB32);
        for (int i = 0; i < 128 * 128; ++i)
            image.setPixel(i % 128, i / 128,
                           0xff000000U | static_cast<QRgb>(i % colors * 0x010301));
        const QByteArray file = PngEncoder::encode(image);
        EXPECT_EQ(colorType(file), colors <= 256 ? 3 : 2) << colors;
        EXPECT_TRUE(test::decodedPng(file).image == test::straight(image)) << colors;
    }
}

TEST(PngEncoder, convertsOtherFormats) {
    for (const QImage::Format format :
         {QImage::Format_Grayscale8, QImage::Format_RGB16, QImage::Format_RGB888,
          QImage::Format_RGBA8888_Premultiplied, QImage::Format_RGB30, QImage::Format_RGBA64,
          QImage::Format_Mono, QImage::Format_Indexed8}) {
        const QImage image = test::picture({65, 43}, QImage::Format_ARGB32, Content::Gradient)
                                 .convertToFormat(format);
        EXPECT_TRUE(test::decodedPng(PngEncoder::encode(image)).image == test::straight(image))
            << format;
    }
    const QImage whole = test::picture({90, 60}, QImage::Format_RGB32, Content::Noise);
    const QImage window(whole.constScanLine(11) + 7 * 4, 31, 23, whole.bytesPerLine(),
                        QImage::Format_RGB32);
    EXPECT_TRUE(test::decodedPng(PngEncoder::encode(window)).image ==
                test::straight(whole.copy(7, 11, 31, 23)));
}

TEST(PngEncoder, tellsTheResolution) {
    QImage image = test::picture({10, 10}, QImage::Format_RGB32, Content::Gradient);
    EXPECT_EQ(test::decodedPng(PngEncoder::encode(image)).dotsPerInch, 0);
    image.setDevicePixelRatio(2);
    EXPECT_NEAR(test::decodedPng(PngEncoder::encode(image)).dotsPerInch, 144, 0.1);
}

TEST(PngEncoder, givesNothingForNothing) {
    EXPECT_TRUE(PngEncoder::encode(QImage()).isEmpty());
}

TEST(PngEncoder, isNoLargerThanQtsFiles) {
    for (const Content content :
         {Content::Gradient, Content::Blocks, Content::Text, Content::Noise}) {
        const QImage image = test::picture({1920, 700}, QImage::Format_RGB32, content);
        const auto ours = static_cast<double>(PngEncoder::encode(image).size());
        EXPECT_LE(ours, 2000 + 1.03 * static_cast<double>(writtenByQt(image).size()))
            << static_cast<int>(content);
    }
}

// All threads of the global queue encode at once, each waiting for helpers that cannot come.
TEST(PngEncoder, worksWhenEveryThreadOfTheQueueEncodes) {
    const QImage image = test::picture({1700, 1300}, QImage::Format_RGB32, Content::Text);
    const QByteArray expected = PngEncoder::encode(image);
    const unsigned tasks = 4 * std::max(2U, std::thread::hardware_concurrency());
    std::atomic<unsigned> same = 0, done = 0;
    for (unsigned task = 0; task < tasks; ++task)
        DispatchQueue::global().async([&] {
            if (PngEncoder::encode(image) == expected) ++same;
            ++done;
            done.notify_one();
        });
    for (unsigned seen = 0; (seen = done) < tasks;) done.wait(seen);
    EXPECT_EQ(same, tasks);
}

TEST(PngFilter, filtersAlikeAtEveryVectorWidth) {
    std::mt19937 random(5);
    for (const size_t pixelBytes : {size_t{3}, size_t{4}})
        for (size_t pixels = 1; pixels < 90; ++pixels) {
            const size_t bytes = pixels * pixelBytes;
            std::vector<uint8_t> row(bytes + 2 * PngFilter::kMargin), above(row);
            for (size_t i = 0; i < bytes; ++i) {
                row[PngFilter::kMargin + i] = static_cast<uint8_t>(random());
                above[PngFilter::kMargin + i] = static_cast<uint8_t>(random());
            }
            const uint8_t* x = row.data() + PngFilter::kMargin;
            const uint8_t* b = above.data() + PngFilter::kMargin;
            EXPECT_EQ(PngFilter::best(x, b, bytes, pixelBytes),
                      PngFilterKernels<16>::best(x, b, bytes, pixelBytes));
            for (int type = 0; type < 5; ++type) {
                std::vector<uint8_t> wide(bytes + PngFilter::kMargin), narrow(wide);
                const auto filter = static_cast<PngFilter::Type>(type);
                PngFilter::apply(filter, x, b, bytes, pixelBytes, wide.data());
                PngFilterKernels<16>::apply(filter, x, b, bytes, pixelBytes, narrow.data());
                wide.resize(bytes);
                narrow.resize(bytes);
                EXPECT_EQ(wide, narrow) << type;
            }
        }
}

}  // namespace
}  // namespace vorla
