#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Kinds of annotation. The numbers travel in broadcasts and settings: never renumber.
enum VLEditGraphType : int64_t {
    VLEditGraphTypeNone = 0,
    VLEditGraphTypeRoundRect = 1,
    VLEditGraphTypeOval = 2,
    VLEditGraphTypeArrow = 3,
    VLEditGraphTypeText = 4,
    VLEditGraphTypeCurve = 5,
    VLEditGraphTypeMosaicPen = 6,
    VLEditGraphTypeTag = 7,
};

/// The type's name, which is also the stem of its keys in themes and settings; empty for "no type",
/// none for a number outside of the table.
std::optional<std::string> VLEditGraphTypeString(int64_t graphType);

/// The type of that exact name; `VLEditGraphTypeNone` for any other text.
VLEditGraphType VLEditGraphTypeForString(std::string_view name);
