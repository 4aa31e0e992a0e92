#include "toolbar/popover/VLPopoverFontSizeType.h"

#include <algorithm>
#include <array>

#include "platform/base/Bundle.h"

namespace {

struct NamedSize {
    uint64_t type;
    const char* label;
    uint64_t fontSize;
};

constexpr std::array<NamedSize, 3> namedSizes{{
    {VLPopoverFontSizeTypeMin, "Min", 18},
    {VLPopoverFontSizeTypeMedium, "Medium", 24},
    {VLPopoverFontSizeTypeMax, "Max", 36},
}};
constexpr const NamedSize& medium = namedSizes[1];

}  // namespace

uint64_t fontSizeOfButtonType(uint64_t type) {
    const auto* found = std::ranges::find(namedSizes, type, &NamedSize::type);
    return found == namedSizes.end() ? medium.fontSize : found->fontSize;
}

uint64_t buttonTypeOfFontSize(uint64_t fontSize) {
    const auto* found = std::ranges::find(namedSizes, fontSize, &NamedSize::fontSize);
    return found == namedSizes.end() ? medium.type : found->type;
}

std::string labelOfButtonType(uint64_t type) {
    const auto* found = std::ranges::find(namedSizes, type, &NamedSize::type);
    return found == namedSizes.end() ? std::string()
                                     : vorla::Bundle::framework().localizedString(found->label);
}
