#pragma once

#include <cstdint>

/// Which pickers a popover shows; bits. The numbers are part of the interface: never renumber.
enum VLPopoverType : uint64_t {
    VLPopoverTypeNone = 0,
    VLPopoverTypeLineWidth = 2,
    VLPopoverTypeLineColor = 4,
    VLPopoverTypeFontSize = 8,
};

/// Which way a popover's arrow points: up from the top edge, or down from the bottom edge.
enum VLPopoverArrowDirection : uint64_t {
    VLPopoverArrowDirectionUp = 0,
    VLPopoverArrowDirectionDown = 1,
};

/// The pickers of a tool, as bits of `VLPopoverType`; none for a number that is no tool.
[[nodiscard]] uint64_t popoverTypeByGraphType(int64_t graphType);
