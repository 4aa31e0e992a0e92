#pragma once

#include <cstdint>
#include <string>

// The three named sizes of the Tern theme.

enum VLPopoverFontSizeType : uint64_t {
    VLPopoverFontSizeTypeMin = 1,
    VLPopoverFontSizeTypeMedium = 2,
    VLPopoverFontSizeTypeMax = 3,
};

/// In points; that of the medium size for any other number.
[[nodiscard]] uint64_t fontSizeOfButtonType(uint64_t type);
/// The medium size's type for a size that is none of the three.
[[nodiscard]] uint64_t buttonTypeOfFontSize(uint64_t fontSize);
/// The name in the user's language; empty for any other number.
[[nodiscard]] std::string labelOfButtonType(uint64_t type);
