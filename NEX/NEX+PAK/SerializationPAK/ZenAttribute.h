#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"

/// The attributes of a packet: from name to the name of a type to the value's bytes, which are a
/// whole stream with the value at tag 0. Exactly one type for each name. Most callers use the typed
/// access of ZenAttributeValues.
class ZenAttribute : public PakObjectV2 {
    PAK_OBJECT_V2(ZenAttribute, nullptr)
    PAK_FIELD(PakDictionary, pakv2_p_0_r_zenAttributes__b0x9i_M09ONSStringM09ONSStringONSData,
              zenAttributes)

    using Text = std::optional<std::string_view>;

    /// The bytes under a name, good until the attributes change; nothing when there is no such
    /// name. With a type asked for, another stored type raises PakInconsistencyException with
    /// "type mismatch!"; an entry without exactly one type raises it with an empty text.
    [[nodiscard]] std::optional<std::span<const uint8_t>> attrValueWithName(
        std::string_view name, Text andType = std::nullopt) const;

    /// Replaces whatever the name had. Without a name or a type (empty ones are good) it raises
    /// PakInconsistencyException with an empty text.
    void setAttrValue(std::span<const uint8_t> value, Text withName, Text andType);

    /// The first type stored under a name, or nothing.
    [[nodiscard]] std::optional<std::string> typeOfName(std::string_view name) const;

    /// All attributes as one map at tag 0.
    [[nodiscard]] PakData attributeData() const;
    static std::shared_ptr<ZenAttribute> fromAttributeData(std::span<const uint8_t> data);
};
