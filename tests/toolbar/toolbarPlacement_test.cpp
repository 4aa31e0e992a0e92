#include "toolbar/toolbarPlacement.h"

#include <gtest/gtest.h>

TEST(ToolbarPlacement, StandsBelowTheSelectionOrInside) {
    const VLRect screen{0, 0, 1920, 1080};
    const struct {
        const char* name;
        VLRect selection;
        VLPoint origin;
    } rows[] = {
        {"in the middle", {600, 400, 700, 300}, {822, 350}},
        {"its height above the bottom", {600, 40, 700, 300}, {822, 50}},
        {"just over its height above the bottom", {600, 40.5, 700, 300}, {822, 0}},
        {"whole screen", {0, 0, 1920, 1080}, {1442, 10}},
        {"lower right corner", {1900, 0, 20, 20}, {1442, 10}},
        {"upper left corner, narrow", {0, 1060, 20, 20}, {0, 1010}},
        {"one point at the left", {3, 500, 1, 1}, {0, 450}},
        {"narrower than the toolbar", {500, 500, 100, 100}, {122, 450}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(toolbarOrigin(row.selection, {478, 40}, screen), row.origin) << row.name;
    EXPECT_EQ(toolbarOrigin({5000, 3000, 10, 10}, {20, 40}, screen), (VLPoint{1919, 1079}));
}

TEST(ToolbarPlacement, PopoverOpensWhereThereIsRoom) {
    const VLRect button{110, 64, 32, 32};
    const auto over = popoverArrow(button, {100, 60, 478, 40});
    EXPECT_EQ(over.point, (VLPoint{123, 105}));
    EXPECT_EQ(over.direction, VLPopoverArrowDirectionDown);
    const auto under = popoverArrow(button, {100, 60.5, 478, 40});
    EXPECT_EQ(under.point, (VLPoint{123, 55.5}));
    EXPECT_EQ(under.direction, VLPopoverArrowDirectionUp);
}

TEST(ToolbarPlacement, PopoverStaysWithinTheToolbarsWidth) {
    const VLRect toolbar{100, 300, 478, 40};
    const struct {
        const char* name;
        double arrow;
        double x;
    } rows[] = {{"centred", 350, 250}, {"at the left", 120, 100}, {"at the right", 570, 378}};
    for (const auto& row : rows) {
        const VLPoint tip{row.arrow, 295};
        EXPECT_EQ(popoverOrigin(tip, VLPopoverArrowDirectionUp, {200, 47}, toolbar),
                  (VLPoint{row.x, 248}))
            << row.name;
        EXPECT_EQ(popoverOrigin(tip, VLPopoverArrowDirectionDown, {200, 47}, toolbar),
                  (VLPoint{row.x, 295}))
            << row.name;
    }
}
