#include "selection/VLCaptureViewSelectedItem.h"

#include <gtest/gtest.h>

#include "platform/view/VLView.h"

namespace {

struct Listener : VLCaptureViewSelectedItemDelegate {
    int changes = 0;
    void selectionDidChange(const VLRect& /*rect*/) override { ++changes; }
};

TEST(SelectedItem, TellsEachChangeOnce) {
    Listener listener;
    VLCaptureViewSelectedItem item({}, nullptr, &listener);
    EXPECT_TRUE(item.pointsArray().empty());
    VLPoint fixed;
    EXPECT_FALSE(item.mouseHitVerticalResizeControlPoints({0, 0}, &fixed));
    EXPECT_FALSE(item.mouseHitCornerResizeControlPoints({0, 0}, nullptr));
    EXPECT_FALSE(item.fixedPointOfControlPoint({{0, 0}, 1}));
    item.setSelectedRect({1, 2, 3, 4});
    item.resizeToRect({1, 2, 3, 4});
    item.move({0, 0});
    EXPECT_EQ(listener.changes, 1);
    item.move({-1, -2});
    EXPECT_EQ(item.selectedRect(), (VLRect{0, 0, 3, 4}));
    item.setSelectedRect({});
    EXPECT_EQ(listener.changes, 3);
    ASSERT_EQ(item.pointsArray().size(), 8U);
    for (const auto& point : item.pointsArray()) EXPECT_EQ(point.point, VLPoint{});
}

TEST(SelectedItem, PointsSitOnTheAlignedRectangle) {
    VLCaptureViewSelectedItem item({10.25, 20.5, 101.5, 30.25}, nullptr);
    EXPECT_EQ(item.pixelSelectedRectInWindow(), (VLRect{11, 21, 100, 29}));
    const VLPoint expected[] = {{11, 50},    {61, 50}, {111, 50}, {11, 35.5},
                                {111, 35.5}, {11, 21}, {61, 21},  {111, 21}};
    for (uint64_t type = 0; type < 8; ++type) {
        EXPECT_EQ(item.pointsArray()[type].point, expected[type]) << type;
        EXPECT_EQ(item.pointsArray()[type].type, type);
    }
}

/// Which point stays: the opposite corner of a corner, a corner of the opposite edge of an edge.
TEST(SelectedItem, HitsItsPartsInOrder) {
    const VLRect large{100, 100, 200, 80};
    const VLRect small{100, 100, 8, 8};
    struct Case {
        VLRect rect;
        VLPoint point;
        const char* hit;  ///< corner, vertical, horizontal, graph or nothing
        uint64_t fixed;   ///< type of the point that stays
    };
    const Case cases[] = {
        {large, {100, 180}, "corner", 7},     {large, {300, 180}, "corner", 5},
        {large, {100, 100}, "corner", 2},     {large, {300, 100}, "corner", 0},
        {large, {200, 180}, "vertical", 5},   {large, {200, 100}, "vertical", 0},
        {large, {100, 140}, "horizontal", 7}, {large, {300, 140}, "horizontal", 5},
        {large, {90, 170}, "corner", 7},      {large, {109.9, 189.9}, "corner", 7},
        {large, {110, 180}, "graph", 0},      {large, {90, 190}, "nothing", 0},
        {large, {99, 120}, "graph", 0},       {large, {98.9, 120}, "nothing", 0},
        {large, {300.9, 120}, "graph", 0},    {large, {301, 120}, "nothing", 0},
        {small, {104, 104}, "corner", 7},     {small, {115, 112}, "corner", 5},
        {small, {95, 99}, "corner", 7},       {small, {109, 91}, "corner", 2},
        {small, {111, 91}, "corner", 0},
    };
    for (const Case& c : cases) {
        VLCaptureViewSelectedItem item(c.rect, nullptr);
        item.borderWidth = 2.0;
        VLControlPoint corner;
        VLPoint fixed;
        const char* hit = "nothing";
        if (item.mouseHitCornerResizeControlPoints(c.point, &corner)) {
            hit = "corner";
            fixed = corner.point;
            EXPECT_EQ(corner.type, c.fixed);
        } else if (item.mouseHitVerticalResizeControlPoints(c.point, &fixed)) {
            hit = "vertical";
        } else if (item.mouseHitHorizontalResizeControlPoints(c.point, &fixed)) {
            hit = "horizontal";
        } else if (item.mouseHitGraph(c.point)) {
            hit = "graph";
        }
        EXPECT_STREQ(hit, c.hit) << c.point.x << "," << c.point.y;
        if (hit != std::string_view("graph") && hit != std::string_view("nothing")) {
            EXPECT_EQ(fixed, item.pointsArray()[c.fixed].point) << c.point.x << "," << c.point.y;
        }
    }
    VLCaptureViewSelectedItem item(large, nullptr);
    EXPECT_FALSE(item.fixedPointOfControlPoint({{100, 100}, 8}));
}

}  // namespace
