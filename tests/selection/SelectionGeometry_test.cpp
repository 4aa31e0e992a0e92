#include "selection/SelectionGeometry.h"

#include <gtest/gtest.h>

namespace {

using vorla::SelectionGrid;

void expectNear(const VLRect& actual, const VLRect& expected, const std::string& what) {
    EXPECT_NEAR(actual.x, expected.x, 1e-9) << what;
    EXPECT_NEAR(actual.y, expected.y, 1e-9) << what;
    EXPECT_NEAR(actual.width, expected.width, 1e-9) << what;
    EXPECT_NEAR(actual.height, expected.height, 1e-9) << what;
}

/// Edges lie on whole points where a point is whole pixels, else on pixels, and on the screen's
/// own edges.
TEST(SelectionGrid, MovesEdgesInwards) {
    const struct {
        double scale;
        VLSize screen;
        VLRect rect, aligned;
    } cases[] = {
        {1, {640, 400}, {10.2, 20.5, 101.5, 30.2}, {11, 21, 100, 29}},
        {2, {640, 400}, {10.5, 20.5, 101, 30}, {11, 21, 100, 29}},
        {1.25, {1092.8, 614.4}, {0.8, 1.6, 320.8, 8.4}, {0.8, 1.6, 320.8, 8}},
        {1.25, {1092.8, 614.4}, {0, 0, 1092.8, 614.4}, {0, 0, 1092.8, 614.4}},
        {2, {683.5, 384.5}, {0, 0, 683.5, 384.5}, {0, 0, 683.5, 384.5}},  // odd, doubled
        {2, {683.5, 384.5}, {0, 0, 683.4, 300.5}, {0, 0, 683, 300}},
        {1, {}, {10.5, 0, 0.2, 5}, {11, 0, 0, 5}},
    };
    for (const auto& c : cases)
        expectNear(SelectionGrid::of(c.scale, c.screen).aligned(c.rect), c.aligned,
                   std::to_string(c.scale));
}

TEST(SelectionGrid, DragsKeepSizesAndReachTheEdges) {
    constexpr auto move = VLSelectedItemTypeMove;
    constexpr auto corner = VLSelectedItemTypeCornerResize;
    constexpr auto wide = VLSelectedItemTypeHorizontalResize;
    constexpr auto tall = VLSelectedItemTypeVerticalResize;
    const VLRect start{100, 100, 200, 80};
    const struct {
        const char* name;
        double scale;
        VLSelectedItemType type;
        VLPoint fixed, from, to;
        VLRect result;
    } cases[] = {
        {"span", 1, VLSelectedItemTypeNone, {50, 60}, {}, {150.5, 99.5}, {50, 60, 100, 40}},
        {"span to the last pixel", 1, corner, {50, 60}, {}, {639.5, 0.5}, {50, 0, 590, 60}},
        {"span to the last point", 2, corner, {50, 60}, {}, {639.25, 0.75}, {50, 0, 590, 60}},
        {"span beyond", 1, corner, {50, 60}, {}, {900, -30}, {50, 0, 590, 60}},
        {"flip", 1, corner, {100, 180}, {}, {60.5, 199.5}, {60, 180, 40, 20}},
        {"left edge", 1, wide, {300, 100}, {}, {349.5, 7}, {300, 100, 49, 80}},
        {"upper edge", 1, tall, {100, 100}, {}, {7, 49.5}, {100, 50, 200, 50}},
        {"move", 1, move, {}, {150.5, 150.5}, {155.5, 140.5}, {105, 90, 200, 80}},
        {"move by a pixel that is no point",
         2,
         move,
         {},
         {150.25, 150.75},
         {150.75, 150.25},
         start},
        {"move by a point", 2, move, {}, {150.25, 150.75}, {151.25, 149.75}, {101, 99, 200, 80}},
        {"move by a pixel", 1.25, move, {}, {150.4, 150.0}, {151.2, 149.2}, {100.8, 99.2, 200, 80}},
        {"move into the corner", 1, move, {}, {150.5, 150.5}, {-500, -500}, {0, 0, 200, 80}},
        {"move to the far edges", 1, move, {}, {150.5, 150.5}, {900, 900}, {439, 319, 200, 80}},
        {"on the grid there too",
         1.25,
         move,
         {},
         {150.4, 150},
         {900, 900},
         {438.4, 318.4, 200, 80}},
        {"nothing", 1, VLSelectedItemTypeIdle, {}, {}, {9, 9}, {}},
    };
    for (const auto& c : cases)
        expectNear(vorla::draggedRect(c.type, c.fixed, c.from, c.to, start,
                                      SelectionGrid::of(c.scale, {640, 400})),
                   c.result, c.name);
}

}  // namespace
