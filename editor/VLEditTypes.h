#pragma once

#include <cstdint>

/// What is happening to an item right now. The numbers travel in undo steps: never renumber.
enum VLEditType : uint64_t {
    VLEditTypeNone = 0,
    VLEditTypeNormal = 1,  ///< without the focus
    VLEditTypeFocus = 2,
    VLEditTypeBeginResize = 4,  ///< an arrow's tail follows the pointer
    VLEditTypeEndResize = 5,    ///< an arrow's tip follows the pointer
    VLEditTypeCornerResize = 6,
    VLEditTypeHorizontalResize = 7,
    VLEditTypeVerticalResize = 8,
    VLEditTypeEqualRatioResize = 9,
    VLEditTypeEdit = 11,  ///< the user types into it
};

/// What an item allows, as bits.
enum VLEditSupport : uint64_t {
    VLEditSupportMove = 0x01,
    VLEditSupportResize = 0x02,
    VLEditSupportAddPoint = 0x04,
    VLEditSupportEqualRatioResize = 0x08,
    VLEditSupportRotate = 0x10,
    VLEditSupportEdit = 0x20,
    VLEditSupportReverse = 0x40,
};
