#include "editor/VLEditGraphType.h"

#include <array>

namespace {

struct Row {
    VLEditGraphType type;
    const char* name;
};

constexpr std::array rows{
    Row{VLEditGraphTypeNone, ""},
    Row{VLEditGraphTypeRoundRect, "VLEditGraphTypeRoundRect"},
    Row{VLEditGraphTypeOval, "VLEditGraphTypeOval"},
    Row{VLEditGraphTypeArrow, "VLEditGraphTypeArrow"},
    Row{VLEditGraphTypeText, "VLEditGraphTypeText"},
    Row{VLEditGraphTypeCurve, "VLEditGraphTypeCurve"},
    Row{VLEditGraphTypeMosaicPen, "VLEditGraphTypeMosaicPen"},
    Row{VLEditGraphTypeTag, "VLEditGraphTypeTag"},
};

}  // namespace

std::optional<std::string> VLEditGraphTypeString(int64_t graphType) {
    for (const Row& row : rows)
        if (row.type == graphType) return row.name;
    return std::nullopt;
}

VLEditGraphType VLEditGraphTypeForString(std::string_view name) {
    for (const Row& row : rows)
        if (row.name == name) return row.type;
    return VLEditGraphTypeNone;
}
