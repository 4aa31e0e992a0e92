#include "imaging/png/PngEncoder.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImageWriter>
#include <atomic>
#include <random>
#include <thread>
#include <vector>

#include "imaging/png/PngFilter.h"
#include "imaging/png/PngFilterKernels.h"
#include "platform/base/DispatchQueue.h"
#include "tests/imaging/pictures.h"

namespace vorla {
namespace {

using test::Content;

constexpr Content kContents[] = {Content::Noise,     Content::Gradient, Content::Flat,
                                 Content::TwoColors, Content::Blocks,   Content::Text};
constexpr QImage::Format kFormats[] = {QImage::Format_RGB32, QImage::Format_ARGB32,
                                       QImage::Format_ARGB32_Premultiplied};

QByteArray writtenByQt(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter(&buffer, "png").write(image);
    return bytes;
}

QImage readByQt(const QByteArray& file) {
    return QImage::fromData(file, "png").convertToFormat(QImage::Format_ARGB32);
}

void expectSamePixels(const QImage& image, const std::string& what) {
    for (const auto goal : {PngEncoder::Goal::Speed, PngEncoder::Goal::Size})
        for (const bool mayIndex : {true, false})
            ASSERT_TRUE(readByQt(PngEncoder::encode(image, {goal, mayIndex})) ==
                        test::straight(image))
                << what << " " << image.width() << "x" << image.height() << " format "
                << image.format();
}

TEST(PngEncoder, keepsEveryPixel) {
    for (const QSize size :
         {QSize(1, 1), QSize(1, 2), QSize(2, 1), QSize(257, 255), QSize(701, 499), QSize(5, 700),
          QSize(1, 70'000), QSize(70'000, 1), QSize(20'003, 3)})
        for (const QImage::Format format : kFormats)
            for (const Content content : kContents)
                expectSamePixels(test::picture(size, format, content), "content");
    // Large enough for stripes, of more than one kind.
    std::mt19937 random(4711);
    for (unsigned round = 0; round < 9; ++round) {
        const QSize size(1001 + static_cast<int>(random() % 300), 1100);
        QImage image = test::picture(size, kFormats[round % 3], kContents[random() % 6], round);
        const QImage other = test::picture(size, image.format(), kContents[random() % 6], round);
        for (int y = static_cast<int>(random() % 1100); y < 1100; ++y)
            std::copy_n(other.constScanLine(y), 4 * 700, image.scanLine(y));
        expectSamePixels(image, "round " + std::to_string(round));
    }
}

TEST(PngEncoder, choosesTheSmallestKindOfPixel) {
    const auto colors = [](unsigned count, unsigned alpha) {
        QImage image(128, 128, QImage::Format_ARGB32);
        for (unsigned i = 0; i < 128 * 128; ++i)
            reinterpret_cast<QRgb*>(image.bits())[i] = alpha << 24 | i % count * 0x010301U;
        return image;
    };
    QImage nearlyOpaque = colors(300, 255), unusedAlpha = colors(300, 0);
    nearlyOpaque.setPixel(127, 127, 0xfe123456);
    unusedAlpha.reinterpretAsFormat(QImage::Format_RGB32);
    const std::tuple<const char*, QImage, int> rows[] = {
        {"257 colours", colors(257, 255), 2},           {"256 colours", colors(256, 255), 3},
        {"one pixel not opaque", nearlyOpaque, 6},      {"unused byte zero", unusedAlpha, 2},
        {"tiny", colors(2, 255).copy(0, 0, 20, 20), 2},
    };
    for (const auto& [name, image, colorType] : rows) {
        EXPECT_EQ(PngEncoder::encode(image).at(25), colorType) << name;
        expectSamePixels(image, name);
    }
}

TEST(PngEncoder, convertsOtherFormatsAndNothing) {
    for (const auto format : {QImage::Format_Grayscale8, QImage::Format_RGB16,
                              QImage::Format_RGB888, QImage::Format_RGBA8888_Premultiplied,
                              QImage::Format_RGB30, QImage::Format_RGBA64, QImage::Format_Mono})
        expectSamePixels(test::picture({65, 43}, QImage::Format_ARGB32, Content::Gradient)
                             .convertToFormat(format),
                         "converted");
    const QImage whole = test::picture({90, 60}, QImage::Format_RGB32, Content::Noise);
    expectSamePixels(
        QImage(whole.constScanLine(11) + 7 * 4, 31, 23, whole.bytesPerLine(), QImage::Format_RGB32),
        "a part of another");
    EXPECT_TRUE(PngEncoder::encode(QImage()).isEmpty());
}

TEST(PngEncoder, isHardlyEverLargerThanQtsFilesInTheBackground) {
    for (const auto content : {Content::Gradient, Content::Blocks, Content::Text, Content::Noise}) {
        const QImage image = test::picture({1920, 700}, QImage::Format_RGB32, content);
        EXPECT_LE(PngEncoder::encode(image, {.goal = PngEncoder::Goal::Size}).size() * 100,
                  writtenByQt(image).size() * 101)
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
        for (size_t bytes = pixelBytes; bytes < 90 * pixelBytes; bytes += pixelBytes) {
            std::vector<uint8_t> row(bytes + 2 * PngFilter::kMargin), above(row);
            for (size_t i = 0; i < bytes; ++i) {
                row[PngFilter::kMargin + i] = static_cast<uint8_t>(random());
                above[PngFilter::kMargin + i] = static_cast<uint8_t>(random());
            }
            const uint8_t* x = row.data() + PngFilter::kMargin;
            const uint8_t* b = above.data() + PngFilter::kMargin;
            EXPECT_EQ(PngFilter::best(x, b, bytes, pixelBytes),
                      PngFilterKernels<16>::best(x, b, bytes, pixelBytes));
            for (const auto filter : {PngFilter::Sub, PngFilter::Average, PngFilter::Paeth}) {
                std::vector<uint8_t> wide(bytes + PngFilter::kMargin), narrow(wide);
                PngFilter::apply(filter, x, b, bytes, pixelBytes, wide.data());
                PngFilterKernels<16>::apply(filter, x, b, bytes, pixelBytes, narrow.data());
                EXPECT_TRUE(
                    std::equal(wide.begin(), wide.end() - PngFilter::kMargin, narrow.begin()))
                    << filter;
            }
        }
}

}  // namespace
}  // namespace vorla
