#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What a function button does. The numbers are part of the interface: never renumber.
enum VLToolbarFunctionButtonType : int64_t {
    VLToolbarFunctionButtonTypeUndo = 0,
    VLToolbarFunctionButtonTypeSave = 1,
    VLToolbarFunctionButtonTypeCancel = 2,
    VLToolbarFunctionButtonTypeOK = 3,
};

/// The name of a type, which is the stem of its theme keys; nothing for a number that is no type.
[[nodiscard]] std::optional<std::string> VLToolbarFunctionButtonTypeString(int64_t type);

/// The type of a name; undo for any other text.
[[nodiscard]] int64_t VLToolbarFunctionButtonTypeForString(std::string_view name);
