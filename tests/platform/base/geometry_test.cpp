#include "platform/base/geometry.h"

#include <gtest/gtest.h>

#include <ostream>

void PrintTo(const VLRect& r, std::ostream* out) {
    *out << r.x << "," << r.y << " " << r.width << "x" << r.height;
}

namespace {

TEST(Geometry, LowEdgesBelongToARectangleAndHighOnesDoNot) {
    const VLRect rect{-10.0, 20.0, 30.0, 40.0};
    const struct {
        VLPoint point;
        bool inside;
    } rows[] = {
        {{-10.0, 20.0}, true}, {{19.999, 59.999}, true}, {{20.0, 30.0}, false},
        {{0.0, 60.0}, false},  {{-10.001, 30.0}, false}, {{0.0, 19.999}, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(rect.containsPoint(row.point), row.inside) << row.point.x << "," << row.point.y;
    EXPECT_FALSE(VLRect{}.containsPoint({0.0, 0.0}));
    EXPECT_FALSE(VLRect::null().containsPoint({0.0, 0.0}));
}

TEST(Geometry, CommonAndSurroundingRectangles) {
    const VLRect a{0.0, 0.0, 10.0, 10.0};
    const struct {
        const char* name;
        VLRect other;
        VLRect common;
        VLRect around;
    } rows[] = {
        {"overlap", {5, -5, 10, 10}, {5, 0, 5, 5}, {0, -5, 15, 15}},
        {"inside", {2, 3, 4, 5}, {2, 3, 4, 5}, a},
        {"shared edge", {10, 0, 5, 10}, {}, {0, 0, 15, 10}},
        {"apart", {20, 20, 1, 1}, {}, {0, 0, 21, 21}},
        {"no width", {5, 5, 0, 3}, {}, a},
        {"negative width", {9, 1, -5, 3}, {}, a},
        {"null", VLRect::null(), {}, a},
        {"fraction", {9.5, 9.5, 1, 1}, {9.5, 9.5, 0.5, 0.5}, {0, 0, 10.5, 10.5}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(a.intersection(row.other), row.common);
        EXPECT_EQ(row.other.intersection(a), row.common);
        EXPECT_EQ(a.united(row.other), row.around);
        EXPECT_EQ(row.other.united(a), row.around);
    }
}

TEST(Geometry, ZeroNullAndEmptyAreToldApart) {
    const struct {
        VLRect rect;
        bool zero, null, empty;
    } rows[] = {
        {{}, true, false, true},
        {VLRect::null(), false, true, true},
        {{1, 1, 0, 0}, false, false, true},
        {{0, 0, -1, 5}, false, false, true},
        {{0, 0, 1, 1}, false, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.rect));
        EXPECT_EQ(row.rect.isZero(), row.zero);
        EXPECT_EQ(row.rect.isNull(), row.null);
        EXPECT_EQ(row.rect.isEmpty(), row.empty);
    }
    EXPECT_TRUE((VLSize{std::nan(""), 1.0}).isEmpty());
}

TEST(Geometry, RoundsOutwardToPointsAndInwardToPixels) {
    const struct {
        const char* name;
        VLRect rect;
        double scale;
        VLRect outward, inward;
    } rows[] = {
        {"whole", {1, 2, 3, 4}, 1.0, {1, 2, 3, 4}, {1, 2, 3, 4}},
        {"fractions", {0.2, 0.8, 2.0, 2.0}, 1.0, {0, 0, 3, 3}, {1, 1, 1, 1}},
        {"negative", {-1.5, -0.25, 1.0, 1.0}, 1.0, {-2, -1, 2, 2}, {-1, 0, 0, 0}},
        {"thinner than a point", {0.25, 0.25, 0.5, 0.5}, 1.0, {0, 0, 1, 1}, {1, 1, 0, 0}},
        {"half points", {0.3, 0.3, 1.4, 1.4}, 2.0, {0, 0, 2, 2}, {0.5, 0.5, 1.0, 1.0}},
        {"noise", {0.9999995, 2.0000005, 3.0, 3.0}, 1.0, {0, 2, 4, 4}, {1, 2, 3, 3}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.rect.integral(), row.outward);
        const VLRect inward = row.rect.alignedInward(row.scale);
        EXPECT_NEAR(inward.x, row.inward.x, 1e-9);
        EXPECT_NEAR(inward.y, row.inward.y, 1e-9);
        EXPECT_NEAR(inward.width, row.inward.width, 1e-9);
        EXPECT_NEAR(inward.height, row.inward.height, 1e-9);
    }
    EXPECT_TRUE(VLRect::null().integral().isNull());
    EXPECT_TRUE(VLRect::null().alignedInward(2.0).isNull());
}

}  // namespace
