#include <gtest/gtest.h>

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cmath>
#include <numbers>
#include <string>

// The pictures as the toolkit really draws them: well-formed SVG may still use what it lacks.

namespace {

const char* const kThemes[] = {"default", "Tern-theme", "Ibis-theme", "Vorla-theme"};

QString themeFolder(const char* theme) {
    return QString(VORLA_RESOURCES) + "/ThemeResources/" + theme;
}

/// The picture at `scale` pixels for each of its units; null when it cannot be drawn.
QImage rendered(const QString& path, int scale) {
    QSvgRenderer renderer(path);
    if (!renderer.isValid()) return {};
    QImage image(renderer.defaultSize() * scale, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

bool hasAnyInk(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 20) return true;
        }
    }
    return false;
}

bool isCore(QRgb pixel) {
    return qAlpha(pixel) > 220 && qGray(pixel) < 60;
}
bool isHalo(QRgb pixel) {
    return qAlpha(pixel) > 220 && qGray(pixel) > 220;
}

/// The pixel of a cursor at a distance from its hot pixel, in the direction of a counter-clockwise
/// angle. Rendered at scale 4, a unit is 4 pixels and the hot pixel's middle lies at 66.
QRgb pixelTowards(const QImage& cursor, double degrees, double distance) {
    const double angle = degrees * std::numbers::pi / 180;
    return cursor.pixel(static_cast<int>(std::floor(66 + 4 * distance * std::cos(angle))),
                        static_cast<int>(std::floor(66 - 4 * distance * std::sin(angle))));
}

}  // namespace

TEST(Pictures, EveryDrawingShowsSomething) {
    for (const char* theme : kThemes) {
        const QDir folder(themeFolder(theme));
        const QStringList names = folder.entryList({"*.svg"});
        ASSERT_GT(names.size(), 80) << theme;
        for (const QString& name : names) {
            const QImage image = rendered(folder.filePath(name), 1);
            ASSERT_FALSE(image.isNull()) << theme << " " << name.toStdString();
            EXPECT_TRUE(hasAnyInk(image)) << theme << " " << name.toStdString();
        }
    }
}

TEST(Pictures, CrosshairIsExactlyOnePixelWideAboutTheHotPixel) {
    for (const char* theme : kThemes) {
        const QImage image = rendered(themeFolder(theme) + "/sightingTelescopeCursor.svg", 1);
        ASSERT_EQ(image.size(), QSize(32, 32));
        EXPECT_TRUE(isCore(image.pixel(16, 16))) << theme;
        for (int distance = 6; distance <= 12; ++distance) {
            for (const int side : {-1, 1}) {
                EXPECT_TRUE(isCore(image.pixel(16 + side * distance, 16))) << theme << distance;
                EXPECT_TRUE(isCore(image.pixel(16, 16 + side * distance))) << theme << distance;
                EXPECT_TRUE(isHalo(image.pixel(16 + distance, 16 + side))) << theme << distance;
                EXPECT_TRUE(isHalo(image.pixel(16 + side, 16 - distance))) << theme << distance;
            }
        }
    }
}

TEST(Pictures, ArrowsPointAlongTheirAngles) {
    const QString folder = themeFolder("default") + "/";
    for (const int angle : {0, 45, 90, 135}) {
        const QImage cursor = rendered(folder + QString("resize_cursor_%1.svg").arg(angle), 4);
        ASSERT_FALSE(cursor.isNull());
        for (const int end : {angle, angle + 180}) {
            EXPECT_TRUE(isCore(pixelTowards(cursor, end, 11))) << angle;
            EXPECT_EQ(0, qAlpha(pixelTowards(cursor, end + 90, 11))) << angle;
        }
    }
    // The arc of a rotation bulges away from what is rotated.
    for (int angle = 0; angle < 360; angle += 45) {
        const QImage cursor = rendered(folder + QString("rotate_cursor_%1.svg").arg(angle), 4);
        ASSERT_FALSE(cursor.isNull());
        EXPECT_TRUE(isCore(pixelTowards(cursor, angle, 3.5))) << angle;
        EXPECT_EQ(0, qAlpha(pixelTowards(cursor, angle + 180, 4.5))) << angle;
    }
}

int main(int argc, char** argv) {
    // Text in a drawing needs the fonts of an application.
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
