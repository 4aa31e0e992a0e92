#include "NEX/NEX+PAK/SerializationPAK/ZenAttribute.h"

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakOutputStream.h"

namespace {

const PakDictionary* typesOfName(const PakDictionary& attributes, std::string_view name) {
    const auto found = attributes.find(name);
    return found == attributes.end() ? nullptr : found->second.dictionary();
}

}  // namespace

std::optional<std::span<const uint8_t>> ZenAttribute::attrValueWithName(std::string_view name,
                                                                        Text andType) const {
    const PakDictionary* types = typesOfName(pak_zenAttributes(), name);
    if (!types) return std::nullopt;
    if (types->size() != 1) vorla::pakRaise("");
    const auto& [type, value] = *types->begin();
    if (andType && type.stringValue() != *andType) vorla::pakRaise("type mismatch!");
    return value.dataValue();
}

void ZenAttribute::setAttrValue(std::span<const uint8_t> value, Text withName, Text andType) {
    if (!withName || !andType) vorla::pakRaise("");
    PakDictionary types;
    types.emplace(*andType, value);
    PakDictionary& attributes = pakv2_p_0_r_zenAttributes__b0x9i_M09ONSStringM09ONSStringONSData;
    attributes.insert_or_assign(*withName, std::move(types));
}

std::optional<std::string> ZenAttribute::typeOfName(std::string_view name) const {
    const PakDictionary* types = typesOfName(pak_zenAttributes(), name);
    if (!types || types->empty()) return std::nullopt;
    return std::string(types->begin()->first.stringValue());
}

PakData ZenAttribute::attributeData() const {
    PakOutputStream stream;
    stream.writeDictionary(pak_zenAttributes(), 0);
    return *stream.data();
}

std::shared_ptr<ZenAttribute> ZenAttribute::fromAttributeData(std::span<const uint8_t> data) {
    const PakDescription& description = pakClass().pakPropsDescription().at(0).ext;
    PakInputStream stream(data);
    auto attributes = std::make_shared<ZenAttribute>();
    if (auto read = stream.readDictionary(0, true, description))
        attributes->setPak_zenAttributes(std::move(*read));
    return attributes;
}
