#include "toolbar/VLToolbarFunctionButtonType.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<std::string_view, 4> names{
    "VLToolbarFunctionButtonTypeUndo",
    "VLToolbarFunctionButtonTypeSave",
    "VLToolbarFunctionButtonTypeCancel",
    "VLToolbarFunctionButtonTypeOK",
};

}  // namespace

std::optional<std::string> VLToolbarFunctionButtonTypeString(int64_t type) {
    if (type < 0 || type >= std::ssize(names)) return std::nullopt;
    return std::string(names[static_cast<size_t>(type)]);
}

int64_t VLToolbarFunctionButtonTypeForString(std::string_view name) {
    const auto found = std::ranges::find(names, name);
    return found == names.end() ? VLToolbarFunctionButtonTypeUndo : found - names.begin();
}
