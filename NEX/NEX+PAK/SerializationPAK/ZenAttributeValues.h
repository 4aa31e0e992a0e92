#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "NEX/NEX+PAK/SerializationPAK/PakPair.h"
#include "NEX/NEX+PAK/SerializationPAK/ZenAttribute.h"

/// Typed access to attributes. Reading with a fixed type raises as ZenAttribute does when another
/// type was stored; a missing attribute reads as nothing, a number as 0.
///
/// The type names are "bool", "char", "short", "int32", "int64", "float", "double", "string" and
/// "list<char>" for byte strings; a number object goes by the letter of its stored type, a
/// structure by its full name, lists and other structures by the name that the caller passes.
struct ZenAttributeValues {
    using Text = ZenAttribute::Text;

    static PakObjectPtr objectWithName(const PakClass& expected, std::string_view name,
                                       Text andType, const ZenAttribute& inAttributes);
    /// By the full name of the structure.
    static PakObjectPtr objectWithName(const PakClass& expected, std::string_view name,
                                       const ZenAttribute& inAttributes);
    static PakObjectPtr objectWithAttributeData(const PakClass& expected,
                                                std::optional<std::span<const uint8_t>> data);
    static std::optional<PakData> dataWithName(std::string_view name,
                                               const ZenAttribute& inAttributes);
    static std::optional<std::string> stringWithName(std::string_view name,
                                                     const ZenAttribute& inAttributes);
    /// Whatever type was stored.
    static std::optional<PakArray> arrayWithName(std::string_view name,
                                                 const ZenAttribute& inAttributes,
                                                 const PakDescription& withDescription);
    /// Whatever type was stored.
    static PakValue numberWithName(std::string_view name, const ZenAttribute& inAttributes);

    static bool boolValueWithName(std::string_view name, const ZenAttribute& inAttributes);
    static int8_t charValueWithName(std::string_view name, const ZenAttribute& inAttributes);
    static int16_t shortValueWithName(std::string_view name, const ZenAttribute& inAttributes);
    static int32_t intValueWithName(std::string_view name, const ZenAttribute& inAttributes);
    static int64_t longlongValueWithName(std::string_view name, const ZenAttribute& inAttributes);
    static float floatValueWithName(std::string_view name, const ZenAttribute& inAttributes);
    static double doubleValueWithName(std::string_view name, const ZenAttribute& inAttributes);

    /// A number, string, byte string or structure, under the type name of its kind. A value of
    /// another kind has none and fails with "0".
    static void setInAttributes(const PakValue& value, ZenAttribute& attributes, Text withName);
    /// A list or a structure, under the given type name.
    static void setInAttributes(const PakValue& value, ZenAttribute& attributes, Text withName,
                                Text andType);

    static void setBool(bool value, ZenAttribute& InAttributes, Text withName);
    static void setChar(int8_t value, ZenAttribute& InAttributes, Text withName);
    static void setShort(int16_t value, ZenAttribute& InAttributes, Text withName);
    static void setInt(int32_t value, ZenAttribute& InAttributes, Text withName);
    static void setLonglong(int64_t value, ZenAttribute& InAttributes, Text withName);
    static void setFloat(float value, ZenAttribute& InAttributes, Text withName);
    static void setDouble(double value, ZenAttribute& InAttributes, Text withName);
};
