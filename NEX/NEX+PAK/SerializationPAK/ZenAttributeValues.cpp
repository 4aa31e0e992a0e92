#include "NEX/NEX+PAK/SerializationPAK/ZenAttributeValues.h"

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakOutputStream.h"

namespace {

using Bytes = std::optional<std::span<const uint8_t>>;
using Text = ZenAttribute::Text;

constexpr int32_t kNumberCapacity = 16 + 64;

std::optional<PakInputStream> streamOver(Bytes bytes) {
    return bytes ? std::make_optional<PakInputStream>(*bytes) : std::nullopt;
}

template <typename T>
T integerWithName(std::string_view name, const ZenAttribute& attributes, const char* type) {
    const Bytes bytes = attributes.attrValueWithName(name, type);
    return bytes ? static_cast<T>(PakInputStream(*bytes).readInt(0)) : T{};
}

template <typename Write>
void setWritten(ZenAttribute& attributes, Text name, Text type, int32_t capacity, Write write) {
    PakOutputStream stream(capacity);
    write(stream);
    attributes.setAttrValue(stream.written(), name, type);
}

void setInteger(int64_t value, ZenAttribute& attributes, Text name, const char* type) {
    setWritten(attributes, name, type, kNumberCapacity,
               [&](PakOutputStream& stream) { stream.writeInt(value, 0); });
}

}  // namespace

PakObjectPtr ZenAttributeValues::objectWithName(const PakClass& expected, std::string_view name,
                                                Text andType, const ZenAttribute& inAttributes) {
    return objectWithAttributeData(expected, inAttributes.attrValueWithName(name, andType));
}

PakObjectPtr ZenAttributeValues::objectWithName(const PakClass& expected, std::string_view name,
                                                const ZenAttribute& inAttributes) {
    const auto type = expected.pakType();
    return objectWithName(expected, name, type ? Text(*type) : Text(), inAttributes);
}

PakObjectPtr ZenAttributeValues::objectWithAttributeData(const PakClass& expected, Bytes data) {
    auto stream = streamOver(data);
    return stream ? stream->readObject(0, true, expected) : nullptr;
}

std::optional<PakData> ZenAttributeValues::dataWithName(std::string_view name,
                                                        const ZenAttribute& inAttributes) {
    auto stream = streamOver(inAttributes.attrValueWithName(name, "list<char>"));
    return stream ? stream->readData(0, true) : std::nullopt;
}

std::optional<std::string> ZenAttributeValues::stringWithName(std::string_view name,
                                                              const ZenAttribute& inAttributes) {
    auto stream = streamOver(inAttributes.attrValueWithName(name, "string"));
    return stream ? stream->readString(0, true) : std::nullopt;
}

std::optional<PakArray> ZenAttributeValues::arrayWithName(std::string_view name,
                                                          const ZenAttribute& inAttributes,
                                                          const PakDescription& withDescription) {
    auto stream = streamOver(inAttributes.attrValueWithName(name));
    return stream ? stream->readArray(0, true, withDescription) : std::nullopt;
}

PakValue ZenAttributeValues::numberWithName(std::string_view name,
                                            const ZenAttribute& inAttributes) {
    auto stream = streamOver(inAttributes.attrValueWithName(name));
    return stream ? stream->readNumber(0, true) : PakValue();
}

bool ZenAttributeValues::boolValueWithName(std::string_view name, const ZenAttribute& attributes) {
    return integerWithName<bool>(name, attributes, "bool");
}

int8_t ZenAttributeValues::charValueWithName(std::string_view name,
                                             const ZenAttribute& attributes) {
    return integerWithName<int8_t>(name, attributes, "char");
}

int16_t ZenAttributeValues::shortValueWithName(std::string_view name,
                                               const ZenAttribute& attributes) {
    return integerWithName<int16_t>(name, attributes, "short");
}

int32_t ZenAttributeValues::intValueWithName(std::string_view name,
                                             const ZenAttribute& attributes) {
    return integerWithName<int32_t>(name, attributes, "int32");
}

int64_t ZenAttributeValues::longlongValueWithName(std::string_view name,
                                                  const ZenAttribute& attributes) {
    return integerWithName<int64_t>(name, attributes, "int64");
}

float ZenAttributeValues::floatValueWithName(std::string_view name,
                                             const ZenAttribute& inAttributes) {
    const Bytes bytes = inAttributes.attrValueWithName(name, "float");
    return bytes ? PakInputStream(*bytes).readFloat(0) : 0;
}

double ZenAttributeValues::doubleValueWithName(std::string_view name,
                                               const ZenAttribute& inAttributes) {
    const Bytes bytes = inAttributes.attrValueWithName(name, "double");
    return bytes ? PakInputStream(*bytes).readDouble(0) : 0;
}

void ZenAttributeValues::setInAttributes(const PakValue& value, ZenAttribute& attributes,
                                         Text withName) {
    switch (value.kind()) {
        case PakValue::Kind::Number: {
            const char type = value.numberType();
            return setWritten(attributes, withName, std::string_view(&type, 1), kNumberCapacity,
                              [&](PakOutputStream& stream) { stream.writeNumber(value, 0, true); });
        }
        case PakValue::Kind::String:
            return setWritten(attributes, withName, "string",
                              static_cast<int32_t>(value.stringValue().size()) + 64,
                              [&](PakOutputStream& stream) { stream.writeString(value, 0, true); });
        case PakValue::Kind::Data:
            return setWritten(attributes, withName, "list<char>",
                              static_cast<int32_t>(value.dataValue().size()) + 64,
                              [&](PakOutputStream& stream) { stream.writeData(value, 0, true); });
        case PakValue::Kind::Object: {
            const auto type = value.objectPointer()->pakType();
            return setInAttributes(value, attributes, withName, type ? Text(*type) : Text());
        }
        default:
            vorla::pakFail("0");
    }
}

void ZenAttributeValues::setInAttributes(const PakValue& value, ZenAttribute& attributes,
                                         Text withName, Text andType) {
    PakOutputStream stream;
    if (value.kind() == PakValue::Kind::Array)
        stream.writeArray(value, 0, true);
    else
        stream.writeObject(value, 0, true);
    attributes.setAttrValue(stream.written(), withName, andType);
}

void ZenAttributeValues::setBool(bool value, ZenAttribute& InAttributes, Text withName) {
    setInteger(value ? 1 : 0, InAttributes, withName, "bool");
}

void ZenAttributeValues::setChar(int8_t value, ZenAttribute& InAttributes, Text withName) {
    setInteger(value, InAttributes, withName, "char");
}

void ZenAttributeValues::setShort(int16_t value, ZenAttribute& InAttributes, Text withName) {
    setInteger(value, InAttributes, withName, "short");
}

void ZenAttributeValues::setInt(int32_t value, ZenAttribute& InAttributes, Text withName) {
    setInteger(value, InAttributes, withName, "int32");
}

void ZenAttributeValues::setLonglong(int64_t value, ZenAttribute& InAttributes, Text withName) {
    setInteger(value, InAttributes, withName, "int64");
}

void ZenAttributeValues::setFloat(float value, ZenAttribute& InAttributes, Text withName) {
    setWritten(InAttributes, withName, "float", kNumberCapacity,
               [&](PakOutputStream& stream) { stream.writeFloat(value, 0); });
}

void ZenAttributeValues::setDouble(double value, ZenAttribute& InAttributes, Text withName) {
    setWritten(InAttributes, withName, "double", kNumberCapacity,
               [&](PakOutputStream& stream) { stream.writeDouble(value, 0); });
}
