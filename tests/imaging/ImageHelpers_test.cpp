#include "imaging/ImageHelpers.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QDir>
#include <QTemporaryDir>
#include <cmath>
#include <csignal>
#include <string>
#include <vector>

#include "imaging/ImageEncoding.h"
#include "platform/base/files.h"
#include "tests/imaging/pictures.h"
#include "tests/support/LogRecorder.h"

namespace vorla {
namespace {

using test::Content;

QImage withRatio(QImage image, double ratio) {
    image.setDevicePixelRatio(ratio);
    return image;
}

TEST(ImageHelpers, saveToFileLogsWhyItFailed) {
    const QTemporaryDir folder;
    const std::string base = folder.path().toStdString();
    ASSERT_TRUE(writeFileAtomically(base + "/file", "x"));
    ASSERT_TRUE(createDirectories(base + "/folder.png"));
    const QImage image = test::picture({30, 20}, QImage::Format_RGB32, Content::Gradient);
    const struct {
        std::string path;
        QImage image;
        int type;
        const char* reason;  // null: nothing is logged
        VLCaptureError error;
    } rows[] = {
        {"", image, 4, nullptr, VLCaptureErrorPath},
        {base + "/a.png", QImage(), 4, nullptr, VLCaptureErrorNoPicture},
        {base + "/file/a.png", image, 4, "Not a directory", VLCaptureErrorPath},
        {base + "/folder.png", image, 4, "Is a directory", VLCaptureErrorPath},
        {"/proc/nowhere/a.png", image, 4, "No such file or directory", VLCaptureErrorPath},
        {base + "/a.gif", QImage(70'000, 1, QImage::Format_RGB32), 2, "cannot be encoded",
         VLCaptureErrorNotEncoded},
    };
    for (const auto& row : rows) {
        const test::LogRecorder log;
        EXPECT_EQ(saveToFile(row.image, row.path, row.type), row.error) << row.path;
        ASSERT_EQ(log.lines().size(), row.reason ? 1U : 0U) << row.path;
        if (!row.reason) continue;
        EXPECT_TRUE(log.lines()[0].starts_with("writeToFile failed with error ")) << log.lines()[0];
        EXPECT_NE(log.lines()[0].find(row.reason), std::string::npos) << log.lines()[0];
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{QStringLiteral("file")});
}

// A limit on file sizes makes writing stop half-way, as a full disk does.
TEST(ImageHelpers, saveToFileOnAFullDiskKeepsTheOldFile) {
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString() + "/a.png";
    ASSERT_TRUE(writeFileAtomically(path, "old"));
    const QImage image = test::picture({200, 200}, QImage::Format_RGB32, Content::Noise);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {20'000, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    VLCaptureError error = VLCaptureErrorNone;
    std::vector<std::string> lines;
    {
        const test::LogRecorder log;
        error = saveToFile(image, path, ImageFileTypePng);
        lines = log.lines();
    }
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(error, VLCaptureErrorNoSpace);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0], "writeToFile failed with error File too large");
    EXPECT_EQ(readFile(path), "old");
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
}

TEST(ImageHelpers, reducingKeepsSizeInPoints) {
    const struct {
        QSize pixels;
        double ratio;
        QSize expected;
    } rows[] = {
        {{200, 100}, 2, {100, 50}}, {{201, 99}, 2, {101, 50}},   {{1, 1}, 2, {1, 1}},
        {{3, 1}, 2, {2, 1}},        {{150, 75}, 1.5, {100, 50}}, {{300, 90}, 3, {100, 30}},
        {{1, 400}, 2, {1, 200}},
    };
    for (const auto& row : rows)
        for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32}) {
            // Filtering must not shift the mean, nor touch a flat colour, at any border.
            const QRgb color = format == QImage::Format_RGB32 ? 0xff3366cc : 0x80336600;
            QImage image(row.pixels, format);
            image.fill(color);
            const QImage half = convert2Xto1XImage(withRatio(image, row.ratio));
            ASSERT_EQ(half.size(), row.expected);
            EXPECT_EQ(half.devicePixelRatio(), 1.0);
            QImage flat(row.expected, format);
            flat.fill(color);
            EXPECT_TRUE(half == flat.convertToFormat(half.format()))
                << row.pixels.width() << "x" << row.pixels.height();
        }
    EXPECT_TRUE(convert2Xto1XImage(QImage()).isNull());
    EXPECT_TRUE(convert2Xto1XImage(QImage(20, 20, QImage::Format_RGB32)).isNull());
}

TEST(ImageHelpers, reducingFiltersWell) {
    // Detail that the smaller picture can hold comes through; detail that it cannot averages out.
    const auto wave = [](double period) {
        QImage image(512, 64, QImage::Format_RGB32);
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 512; ++x) {
                const double angle = 2 * M_PI * (x + 0.5) / period;
                const int value = static_cast<int>(std::lround(128 + 100 * std::sin(angle)));
                image.setPixel(x, y, qRgb(value, value, value));
            }
        return withRatio(image, 2);
    };
    const struct {
        double period;
        double least;
        double most;
    } rows[] = {{32, 98, 101}, {8, 95, 103}, {6, 85, 103}, {3, 0, 6}, {2.2, 0, 3}};
    for (const auto& row : rows) {
        const QImage half = convert2Xto1XImage(wave(row.period));
        double power = 0;
        for (int x = 28; x < 228; ++x) power += std::pow(qGreen(half.pixel(x, 16)) - 128.0, 2);
        const double amplitude = std::sqrt(2 * power / 200);
        EXPECT_GE(amplitude, row.least) << row.period;
        EXPECT_LE(amplitude, row.most) << row.period;
    }
}

TEST(ImageHelpers, reducingLendsNoColorFromClearPixels) {
    QImage image(64, 64, QImage::Format_ARGB32);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x) image.setPixel(x, y, x < 32 ? 0xff0000ff : 0x00ff0000);
    const QImage half = convert2Xto1XImage(withRatio(image, 2));
    for (int x = 0; x < 32; ++x) {
        const QRgb pixel = half.pixel(x, 16);
        EXPECT_EQ(qRed(pixel), 0) << x;
        if (qAlpha(pixel) > 20) {
            EXPECT_GE(qBlue(pixel), 235) << x;
        }
    }
    EXPECT_EQ(qAlpha(half.pixel(4, 16)), 255);
    EXPECT_EQ(qAlpha(half.pixel(28, 16)), 0);
}

TEST(ImageHelpers, masksAreBlackRoundedRectangles) {
    for (const double ratio : {1.0, 2.0}) {
        const QImage mask = generateImageWithSize({20, 10}, 4, ratio);
        EXPECT_EQ(mask.size(), QSize(20, 10) * ratio);
        EXPECT_EQ(mask.devicePixelRatio(), ratio);
        EXPECT_EQ(mask.pixel(0, 0), 0U);
        EXPECT_EQ(mask.pixel(mask.width() - 1, mask.height() - 1), 0U);
        EXPECT_EQ(mask.pixel(mask.width() / 2, 0), 0xff000000);
        EXPECT_EQ(mask.pixel(0, mask.height() / 2), 0xff000000);
    }
    EXPECT_EQ(generateImageWithSize({20, 10}, 0).pixel(0, 0), 0xff000000);
    EXPECT_GT(qAlpha(generateImageWithSize({9, 9}, 500).pixel(4, 0)), 200);
    for (const VLSize& empty : {VLSize{0, 5}, VLSize{5, -1}})
        EXPECT_TRUE(generateImageWithSize(empty, 2).isNull());
}

}  // namespace
}  // namespace vorla
