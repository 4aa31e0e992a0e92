// Where items are, and what a pointer touches of them: pure geometry, no view.

#include "editor/items/VLEditItem.h"

#include <gtest/gtest.h>

#include <cmath>

#include "editor/items/VLArrowItem.h"
#include "editor/items/VLOvalItem.h"
#include "editor/items/VLRoundRectItem.h"

namespace {

void expectNear(VLPoint a, VLPoint b, const char* name) {
    EXPECT_NEAR(a.x, b.x, 1e-9) << name;
    EXPECT_NEAR(a.y, b.y, 1e-9) << name;
}

/// An item spanned from one point to another, with live handles.
template <typename ItemType>
std::shared_ptr<ItemType> spanned(VLPoint from, VLPoint to, double width = 2.0) {
    auto item =
        std::make_shared<ItemType>(std::weak_ptr<VLEditItemSuperView>(), VLPoint{}, VLSize{});
    item->setNormalStrokeWidth(width);
    item->setResizeFixedPoint(from);
    item->setResizeChangePoint(to);
    item->updateControlPoints();
    return item;
}

TEST(EditItem, EveryHandleResizesAgainstItsFixedCorner) {
    struct Case {
        const char* name;
        VLPoint press, to;
        VLEditType type;
        VLPoint center;
        VLSize size;
    };
    const Case cases[] = {
        {"top left", {0, 50}, {-10, 80}, VLEditTypeCornerResize, {45, 40}, {110, 80}},
        {"top", {50, 50}, {999, 80}, VLEditTypeVerticalResize, {50, 40}, {100, 80}},
        {"top right", {100, 50}, {120, 40}, VLEditTypeCornerResize, {60, 20}, {120, 40}},
        {"left", {0, 25}, {20, 999}, VLEditTypeHorizontalResize, {60, 25}, {80, 50}},
        {"right", {100, 25}, {-40, 999}, VLEditTypeHorizontalResize, {-20, 25}, {40, 50}},
        {"bottom left", {0, 0}, {30, 90}, VLEditTypeCornerResize, {65, 70}, {70, 40}},
        {"bottom", {50, 0}, {1, 60}, VLEditTypeVerticalResize, {50, 55}, {100, 10}},
        {"bottom right", {100, 0}, {50, -50}, VLEditTypeCornerResize, {25, 0}, {50, 100}},
    };
    for (const double degrees : {0.0, 30.0})
        for (const Case& c : cases) {
            const auto item = spanned<VLRoundRectItem>({0, 0}, {100, 50});
            const VLPoint middle{50, 25};
            const auto turned = [&](VLPoint p) {
                const QPointF q = QTransform().rotate(degrees).map(QPointF(p.x - 50, p.y - 25));
                return VLPoint{q.x(), q.y()} + middle;
            };
            item->setDegrees(degrees);
            VLPoint fixed{-1, -1};
            const VLPoint press = turned(c.press);
            const bool hit = c.type == VLEditTypeCornerResize
                                 ? item->mouseHitCornerResizeControlPoints(press, &fixed, nullptr)
                             : c.type == VLEditTypeVerticalResize
                                 ? item->mouseHitVerticalResizeControlPoints(press, &fixed)
                                 : item->mouseHitHorizontalResizeControlPoints(press, &fixed);
            ASSERT_TRUE(hit) << c.name;
            item->setResizeFixedPoint(fixed);
            item->setEditType(c.type);
            item->setResizeChangePoint(turned(c.to));
            expectNear(item->center(), turned(c.center), c.name);
            EXPECT_NEAR(item->size().width, c.size.width, 1e-9) << c.name;
            EXPECT_NEAR(item->size().height, c.size.height, 1e-9) << c.name;
        }
}

TEST(EditItem, HandlesReactInSquaresAndRings) {
    const auto item = spanned<VLRoundRectItem>({0, 0}, {100, 50});
    struct Case {
        VLPoint at;
        bool resizes, rotates;
    };
    const Case cases[] = {{{105, 50}, false, true},    {{95, 50}, true, false},
                          {{106, 50}, false, true},    {{107.5, 50}, false, false},
                          {{92.5, 50}, false, true},   {{92.4, 50}, false, false},
                          {{104.9, 54.9}, true, false}};
    for (const auto& [at, resizes, rotates] : cases) {
        EXPECT_EQ(item->mouseHitCornerResizeControlPoints(at, nullptr, nullptr), resizes) << at.x;
        EXPECT_EQ(item->mouseHitCornerRotateControlPoints(at, nullptr), rotates) << at.x;
    }
    // A new item has no size: its handles lie in one place, and the first corner wins.
    const auto point = spanned<VLRoundRectItem>({7, 7}, {7, 7});
    uint64_t type = 99;
    EXPECT_TRUE(point->mouseHitCornerResizeControlPoints({7, 7}, nullptr, &type));
    EXPECT_EQ(type, VLEditControlPointTopLeft);
    EXPECT_FALSE(point->isValid());
    EXPECT_TRUE(spanned<VLRoundRectItem>({0, 0}, {0, 5})->isValid());
    EXPECT_FALSE(point->fixedPointOfControlPoint({{}, 8}));
}

TEST(EditItem, TurnsByTheAngleOfEachStepAndMovesWithItsDiagonal) {
    const auto item = spanned<VLRoundRectItem>({0, 0}, {100, 50});
    item->setRotateStartPoint({150, 25});
    item->setRotateEndPoint({50, 125});
    EXPECT_NEAR(item->degrees(), 90.0, 1e-4);
    EXPECT_NEAR(item->resizeFixedPoint().x, 75, 1e-3);
    EXPECT_NEAR(item->resizeFixedPoint().y, -25, 1e-3);
    item->move({10, -5});
    expectNear(item->center(), {60, 20}, "centre");
    EXPECT_NEAR(item->resizeChangePoint().x, 35, 1e-3);
    expectNear(item->convertPointIn(item->convertPointOut({3, 4})), {3, 4}, "there and back");
    const auto copy = item->copyWithZone();
    EXPECT_EQ(copy->graphType(), VLEditGraphTypeRoundRect);
    EXPECT_NEAR(copy->size().width, 100, 1e-3);
    EXPECT_TRUE(copy->pointsArray().empty());
}

struct HitCase {
    VLPoint at;
    bool hit;
};

TEST(Shapes, AreHitOnTheirLines) {
    const HitCase rectangle[] = {{{0, 25}, true},   {{-1, 25}, true},   {{-1.1, 25}, false},
                                 {{1.9, 25}, true}, {{2.1, 25}, false}, {{50, 25}, false},
                                 {{50, 50.9}, true}};
    const auto rect = spanned<VLRoundRectItem>({0, 0}, {100, 50});
    for (const HitCase& c : rectangle) EXPECT_EQ(rect->mouseHitGraph(c.at), c.hit) << c.at.x;
    const HitCase ellipse[] = {{{0, 25}, true},    {{-0.9, 25}, true}, {{-1.1, 25}, false},
                               {{1.1, 25}, false}, {{50, 49.5}, true}, {{50, 25}, false},
                               {{2, 2}, false}};
    const auto oval = spanned<VLOvalItem>({0, 0}, {100, 50});
    for (const HitCase& c : ellipse) EXPECT_EQ(oval->mouseHitGraph(c.at), c.hit) << c.at.x;
    EXPECT_TRUE(spanned<VLOvalItem>({0, 0}, {5, 5}, 10)->mouseHitGraph({2.5, 2.5}));
    EXPECT_TRUE(spanned<VLOvalItem>({0, 0}, {5, 30}, 10)->mouseHitGraph({2.5, 15}));
    rect->setDegrees(90);
    EXPECT_TRUE(rect->mouseHitGraph({50, 75}));
    EXPECT_FALSE(rect->mouseHitGraph({0, 25}));
}

TEST(Arrow, ProportionsFollowLengthAndWidth) {
    struct Case {
        double length, width;
        VLSize head;
        double radius;
    };
    const Case cases[] = {{15, 2, {2.6, 1.6}, 0.2},   {20, 3.9, {5.2, 3.2}, 0.4},
                          {59.9, 4, {16.8, 11.2}, 2}, {79.9, 6.9, {25.2, 16.8}, 3},
                          {99.9, 7, {48, 32}, 5.6},   {100, 7, {60, 40}, 7}};
    for (const Case& c : cases) {
        const auto p = VLArrowItem::proportions(c.length, c.width);
        EXPECT_NEAR(p.head.width, c.head.width, 1e-9) << c.length;
        EXPECT_NEAR(p.head.height, c.head.height, 1e-9) << c.length;
        EXPECT_NEAR(p.radius, c.radius, 1e-9) << c.length;
    }
}

TEST(Arrow, EndsAreHandlesAndTheShaftMoves) {
    const auto arrow = spanned<VLArrowItem>({0, 0}, {200, 0});
    VLPoint fixed;
    EXPECT_TRUE(arrow->mouseHitBeginResizeControlPoints({4, 4}, &fixed));
    expectNear(fixed, {200, 0}, "the tip stays");
    EXPECT_TRUE(arrow->mouseHitEndResizeControlPoints({196, 0}, &fixed));
    expectNear(fixed, {0, 0}, "the tail stays");
    EXPECT_FALSE(arrow->mouseHitBeginResizeControlPoints({5, 0}, nullptr));
    EXPECT_TRUE(arrow->mouseHitGraph({100, 3}));
    EXPECT_FALSE(arrow->mouseHitGraph({20, 6}));
    // The tail is dragged: the end that follows the pointer is the tail.
    arrow->setResizeFixedPoint({200, 0});
    arrow->setEditType(VLEditTypeBeginResize);
    arrow->setResizeChangePoint({100, 100});
    expectNear(arrow->convertPointOut(arrow->beginPoint()), {100, 100}, "tail");
    EXPECT_NEAR(arrow->rotateDegrees(), -45, 1e-4);
    // Pressed on the tail and let go, then moved: both ends come from one place.
    arrow->setResizeFixedPoint(arrow->resizeChangePoint());
    arrow->move({1, 0});
    EXPECT_EQ(arrow->beginPoint(), arrow->endPoint());
}

}  // namespace
