#include "editor/items/VLCurveItem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "editor/items/MosaicPicture.h"
#include "editor/items/VLMosaicCurveItem.h"
#include "tests/editor/items/ItemPainting.h"

namespace {

using vorla::test::largestDifference;
using vorla::test::Sheet;

/// Writes down what of it has to be drawn, as the edit view does.
struct Recorder : VLEditItemSuperView {
    void itemDidChange(const VLEditItem&) override {}
    void itemDidGrow(const VLEditItem&, const VLRect& rect) override { grown = rect; }
    VLView* view() override { return nullptr; }
    VLRect grown;
};

std::vector<VLPoint> scribble(int count) {
    std::vector<VLPoint> points;
    for (int i = 0; i < count; ++i)
        points.push_back({150 + i * 0.7 + 40 * std::cos(i * 0.45), 90 + 60 * std::sin(i * 0.31)});
    return points;
}

template <typename Item>
std::shared_ptr<Item> makeStroke(double width, QColor color, const std::vector<VLPoint>& points,
                                 const std::shared_ptr<VLEditItemSuperView>& view = {}) {
    auto item = std::make_shared<Item>(view, VLPoint{}, VLSize{});
    item->setNormalStrokeWidth(width);
    item->setNormalStrokeColor(color);
    for (const VLPoint& point : points) item->addPoint(point);
    return item;
}

class CurveItem : public testing::TestWithParam<double> {};

/// Each new point paints its own part only, and the picture is that of a stroke drawn at once:
/// joints, crossings and translucent colours included.
TEST_P(CurveItem, GrowsToTheSamePictureAsDrawnAtOnce) {
    const QColor translucent(200, 30, 60, 120);
    for (const double width : {1.0, 4.0, 20.0}) {
        const auto recorder = std::make_shared<Recorder>();
        const auto growing = makeStroke<VLCurveItem>(width, translucent, {}, recorder);
        const QImage ground = Sheet({300, 200}, GetParam()).picture;
        Sheet canvas({300, 200}, GetParam());
        for (const VLPoint& point : scribble(120)) {
            growing->addPoint(point);
            // The canvas puts back what lies below before it draws there again.
            const VLRect part = recorder->grown.integral();
            {
                QPainter painter(&canvas.picture);
                painter.setClipRect(QRectF(part.x, 200 - part.maxY(), part.width, part.height));
                painter.drawImage(0, 0, ground);
            }
            canvas.draw(*growing, part);
        }
        const auto whole = makeStroke<VLCurveItem>(width, translucent, scribble(120));
        Sheet expected({300, 200}, GetParam());
        expected.draw(*whole);
        EXPECT_EQ(largestDifference(canvas.picture, expected.picture), 0) << width;
        // Blended once: no pixel is darker than one layer of the colour.
        for (int y = 0; y < expected.picture.height(); ++y)
            for (int x = 0; x < expected.picture.width(); ++x)
                ASSERT_GE(qGreen(expected.picture.pixel(x, y)), 255 - 225 * 120 / 255 - 1);
    }
}

TEST_P(CurveItem, MovesAlongWithItsPixels) {
    const double pixel = 1 / GetParam();
    const auto item = makeStroke<VLCurveItem>(5, Qt::blue, scribble(60));
    Sheet before({300, 200}, GetParam());
    before.draw(*item);
    // 1/1.25 is no exact double: many such steps must not add up to other pixels.
    for (int i = 0; i < 13; ++i) item->move({pixel, -pixel});
    Sheet after({300, 200}, GetParam());
    after.draw(*item);
    const QRect kept(0, 0, before.picture.width() - 13, before.picture.height() - 13);
    EXPECT_EQ(
        largestDifference(before.picture.copy(kept), after.picture.copy(kept.translated(13, 13))),
        0);
}

INSTANTIATE_TEST_SUITE_P(Scales, CurveItem, testing::Values(1.0, 1.25, 2.0));

TEST(CurveItemHit, IsOnTheLineOnly) {
    const auto item = makeStroke<VLCurveItem>(10, Qt::red, {{10, 10}, {110, 10}, {110, 60}});
    struct Case {
        VLPoint point;
        bool isHit;
    };
    // The path goes to (60, 10) and by a curve to (110, 35), short of the last point.
    const Case cases[] = {{{10, 14.9}, true},  {{10, 15.1}, false},  {{5.1, 10}, true},
                          {{4.9, 10}, false},  {{50, 5.1}, true},    {{50, 4.9}, false},
                          {{110, 39.9}, true}, {{110, 40.1}, false}, {{110, 60}, false}};
    for (const auto& [point, isHit] : cases)
        EXPECT_EQ(item->mouseHitGraph(point), isHit) << point.x << "," << point.y;
    item->move({10, 5});
    EXPECT_TRUE(item->mouseHitGraph({60, 10.1}));
    EXPECT_FALSE(item->mouseHitGraph({60, 9.9}));
    EXPECT_EQ(item->bounds(), (VLRect{10, 10, 100, 25}));
}

TEST(CurveItemShape, OfOnePointIsADot) {
    const auto item = makeStroke<VLCurveItem>(10, Qt::black, {{20, 20}});
    Sheet sheet({40, 40}, 1);
    sheet.draw(*item);
    EXPECT_EQ(sheet.picture.pixel(20, 20), 0xff000000);
    EXPECT_EQ(sheet.picture.pixel(20, 16), 0xff000000);
    EXPECT_EQ(sheet.picture.pixel(20, 26), 0xffffffff);
    EXPECT_TRUE(item->mouseHitGraph({20, 24.9}));
    // Places that no pointer has are taken without harm.
    const auto wild = makeStroke<VLCurveItem>(3, Qt::red, {{1e300, -1e300}, {NAN, 5}, {20, 20}});
    sheet.draw(*wild);
    EXPECT_FALSE(wild->mouseHitGraph({500, 500}));
}

/// Under a mosaic stroke nothing of the picture's pixels is left but their squares' averages.
TEST(MosaicCurveItem, HidesWhatLiesUnderIt) {
    for (const double scale : {1.0, 1.25, 2.0}) {
        Sheet ground({300, 200}, scale);
        for (int y = 0; y < ground.picture.height(); ++y)
            for (int x = 0; x < ground.picture.width(); ++x)
                ground.picture.setPixel(x, y, ((x * 37) ^ (y * 101)) * 2654435761U | 0xff000000);
        VLMosaicCurveItem::setOriginalImage(ground.picture);
        const auto item = makeStroke<VLMosaicCurveItem>(8, Qt::red, scribble(60));
        EXPECT_FALSE(item->normalStrokeColor().isValid());
        EXPECT_FALSE(item->mouseHitGraph(scribble(60)[30]) && item->supports(VLEditSupportMove));
        Sheet canvas = ground;
        canvas.draw(*item);
        int inside = 0;
        for (int y = 0; y < canvas.picture.height(); ++y)
            for (int x = 0; x < canvas.picture.width(); ++x) {
                const VLPoint at{(x + 0.5) / scale, 200 - (y + 0.5) / scale};
                const double column = x + 0.5;
                QRgb average = 0;
                VLMosaicCurveItem::orinialCIImage()->colorsOfRow(y + 0.5, &column, 1, &average);
                if (item->path().isNear(at, 12 - 0.6 / scale)) {
                    ASSERT_EQ(canvas.picture.pixel(x, y), average) << x << "," << y;
                    ++inside;
                } else if (!item->path().isNear(at, 12 + 0.6 / scale)) {
                    ASSERT_EQ(canvas.picture.pixel(x, y), ground.picture.pixel(x, y));
                }
            }
        EXPECT_GT(inside, 5000);
        // Without its picture it draws nothing.
        VLMosaicCurveItem::setOriginalImage({});
        Sheet bare = ground;
        bare.draw(*item);
        EXPECT_EQ(largestDifference(bare.picture, ground.picture), 0);
    }
}

}  // namespace
