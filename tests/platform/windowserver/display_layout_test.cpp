#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/windowserver/X11Pixels.h"
#include "platform/windowserver/X11WindowPictures.h"
#include "platform/windowserver/displayLayout.h"

namespace vorla {
namespace {

using testing::ElementsAre;

TEST(MatchMonitors, GivesMonitorsTheToolkitsOrderAndScale) {
    // The toolkit leaves origins unscaled and rounds sizes to points.
    const NativeMonitor a{"A", {0, 0, 1366, 768}};
    const NativeMonitor b{"B", {1366, -200, 3840, 2160}};
    const NativeMonitor mirror{"M", {0, 0, 1366, 768}};
    struct Row {
        const char* name;
        std::vector<NativeMonitor> monitors, screens, expected;
    };
    const NativeMonitor screenA{"A", {0, 0, 1367, 768}, 1.5};
    const NativeMonitor screenB{"B", {1366, -200, 3840, 2160}, 2.0};
    const auto scaled = [](NativeMonitor m, double scale) {
        m.scale = scale;
        return m;
    };
    const std::vector<Row> rows = {
        {"no toolkit", {a, b}, {}, {a, b}},
        {"primary first", {a, b}, {screenB, screenA}, {scaled(b, 2.0), scaled(a, 1.5)}},
        {"mirrored: by name", {mirror, a}, {screenA}, {scaled(a, 1.5)}},
        {"renamed: by place", {{"Z", a.frame}}, {screenA}, {{"Z", a.frame, 1.5}}},
        {"moved: by name",
         {{"A", {50, 0, 1366, 768}}},
         {screenA},
         {{"A", {50, 0, 1366, 768}, 1.5}}},
        {"unknown to the server", {b}, {screenA}, {screenA}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(matchMonitors(row.monitors, row.screens), row.expected) << row.name;
}

TEST(LayOutDisplays, EachHasItsOwnPointsAboveTheFirstOnesFloor) {
    const auto displays = layOutDisplays({{"first", {0, 0, 1920, 1080}, 1.0},
                                          {"right, taller", {1920, -360, 3840, 2160}, 2.0},
                                          {"left, below", {-1280, 400, 1280, 1024}, 1.25}});
    EXPECT_EQ(displays[0].frame, (VLRect{0, 0, 1920, 1080}));
    EXPECT_EQ(displays[1].frame, (VLRect{960, -360, 1920, 1080}));
    EXPECT_EQ(displays[2].frame, (VLRect{-1024, -275.2, 1024, 819.2}));
}

TEST(NativeFromLocal, IsMadeWholeOutwardsAndCut) {
    const Display plain = layOutDisplays({{"", {100, 50, 1000, 800}, 1.0}})[0];
    const Display twice = layOutDisplays({{"", {100, 50, 1000, 800}, 2.0}})[0];
    const Display odd = layOutDisplays({{"", {0, 0, 1366, 768}, 1.5}})[0];
    const double nan = std::nan("");
    struct Row {
        const Display& display;
        VLRect local;
        PixelRect native;
    };
    const Row rows[] = {
        {plain, {0, 0, 10, 20}, {100, 830, 10, 20}},
        {plain, {0.5, 0.5, 10, 20}, {100, 829, 11, 21}},
        {plain, {0.0001, 0, 9.9998, 20}, {100, 830, 10, 20}},
        {plain, {-5, 790, 10, 20}, {100, 50, 5, 10}},
        {plain, {-1e300, -1e300, 2e300, 2e300}, {100, 50, 1000, 800}},
        {twice, {0.25, 0.25, 1, 1}, {100, 847, 3, 3}},
        {twice, {0, 0, 500, 400}, {100, 50, 1000, 800}},
        {odd, {0, 0, odd.frame.width, odd.frame.height}, {0, 0, 1366, 768}},
        {plain, {2000, 0, 10, 10}, {}},
        {plain, {0, 0, -1, 10}, {}},
        {plain, {nan, 0, 10, 10}, {}},
        {plain, VLRect::null(), {}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(nativeFromLocal(row.local, row.display), row.native)
            << row.local.x << " " << row.local.y << " " << row.display.scale;
}

TEST(VisibleFrame, MarginsAreTakenAwayWhereTheyAreCredible) {
    const PixelRect outer{100, 100, 420, 340};
    const PixelRect content{110, 130, 400, 300};
    struct Row {
        const char* name;
        std::vector<uint32_t> gtk, frame;
        PixelRect visible;
    };
    const Row rows[] = {
        {"nothing known", {}, {}, outer},
        {"drawn by the client", {10, 12, 14, 16}, {}, {110, 114, 398, 310}},
        {"the frame has an invisible border", {}, {1, 1, 20, 5}, {109, 110, 402, 325}},
        {"decorations reach beyond the frame", {}, {50, 50, 50, 50}, outer},
        {"too few numbers", {10, 12}, {}, outer},
        {"nonsense", {4000000000U, 0, 0, 0}, {}, outer},
        {"nothing would be left", {300, 300, 0, 0}, {}, outer},
    };
    for (const Row& row : rows)
        EXPECT_EQ(visibleFrameOf(outer, content, row.gtk, row.frame), row.visible) << row.name;
}

TEST(Coverage, CountsWhatLiesInFrontAndTheDisplaysEdges) {
    const auto displays =
        layOutDisplays({{"L", {0, 0, 1000, 800}, 1.0}, {"R", {1000, 0, 1000, 800}, 1.0}});
    const auto window = [](PixelRect rect) {
        X11Window w;
        w.outer = w.visible = w.content = rect;
        return w;
    };
    const auto coverage = coverageOf(
        {window({100, 100, 200, 200}), window({200, 200, 200, 200}), window({150, 150, 100, 100}),
         window({900, 100, 200, 100}), window({-50, 600, 100, 100}), window({600, 600, 100, 100})},
        displays);
    EXPECT_THAT(coverage, ElementsAre(Coverage::Uncovered, Coverage::Partly, Coverage::Hidden,
                                      Coverage::Partly, Coverage::Partly, Coverage::Uncovered));
}

TEST(FinishPixels, TenBitChannelsBecomeEight) {
    uint32_t deep[] = {0x3fffffffU, 0xc0000000U, 0x203U << 20 | 0x101U << 10 | 0x0feU};
    finishPixels(deep, 3, PixelLayout::Rgb30, AlphaByte::AsIs);
    EXPECT_THAT(deep, ElementsAre(0xffffffffU, 0xff000000U, 0xff80403fU));
    uint32_t opaque[] = {0x00123456U};
    finishPixels(opaque, 1, PixelLayout::Rgb24, AlphaByte::Set);
    EXPECT_EQ(opaque[0], 0xff123456U);
    uint32_t clear[] = {0x00123456U};
    finishPixels(clear, 1, PixelLayout::Argb32, AlphaByte::Set);
    EXPECT_EQ(clear[0], 0x00123456U);
}

}  // namespace
}  // namespace vorla
