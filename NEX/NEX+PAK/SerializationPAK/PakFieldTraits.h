#pragma once

#include <cmath>
#include <concepts>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "NEX/NEX+PAK/SerializationPAK/PakClass.h"
#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakOutputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakPropertyInfo.h"
#include "NEX/NEX+PAK/SerializationPAK/PakValue.h"

/// A number object as the value of a field: nothing, or a number with its stored type.
struct PakNumber {
    PakValue number;
};

namespace vorla {

/// How values of type T are named, written and read as a declared field:
///   encodedType()                  one letter, or `@"ClassName"`
///   wrapped(value)                 something that a PakValue can be made of
///   pack(value, stream, info, reference)
///   unpack(stream, info)           empty when the field is absent, else what a T can be made of
template <typename T>
struct PakFieldTraits;

template <PakScalar T>
struct PakFieldTraits<T> {
    static constexpr char letter() {
        if constexpr (std::same_as<T, bool>) return 'B';
        if constexpr (std::same_as<T, float>) return 'f';
        if constexpr (std::same_as<T, double>) return 'd';
        constexpr const char* kLetters = std::is_signed_v<T> ? "?cs?i???q" : "?CS?I???Q";
        return kLetters[sizeof(T)];
    }

    static std::string encodedType() { return {letter()}; }
    static T wrapped(T value) { return value; }

    static void pack(T value, PakOutputStream& stream, const PakPropertyInfo& info,
                     const PakObject* /*reference*/) {
        const auto tag = static_cast<int32_t>(info.tag);
        if constexpr (letter() == 'Q')
            pakFail("0");
        else if constexpr (std::same_as<T, float>)
            stream.writeFloat(value, tag);
        else if constexpr (std::same_as<T, double>)
            stream.writeDouble(value, tag);
        else
            stream.writeInt(static_cast<int64_t>(value), tag);
    }

    static std::optional<T> unpack(PakInputStream& stream, const PakPropertyInfo& info) {
        if constexpr (letter() == 'Q') pakFail("0");
        return stream.readNumberAs<T>(static_cast<int32_t>(info.tag), info.flag);
    }
};

/// What all fields that hold a value of a class have in common: Self says which class, how a
/// present value is written and how it is taken out of a PakValue of that class.
template <typename T, typename Self>
struct PakClassFieldTraits {
    static std::string encodedType() {
        return "@\"" + std::string(Self::expectedClass().name()) + "\"";
    }
    static const T& wrapped(const T& value) { return value; }

    static void pack(const T& value, PakOutputStream& stream, const PakPropertyInfo& info,
                     const PakObject* /*reference*/) {
        Self::write(value, stream, static_cast<int32_t>(info.tag));
    }

    static std::optional<T> unpack(PakInputStream& stream, const PakPropertyInfo& info) {
        const auto tag = static_cast<int32_t>(info.tag);
        PakValue value = info.ext ? stream.readAnything(tag, info.flag, info.ext)
                                  : stream.readAnything(tag, info.flag, Self::expectedClass());
        if (!value) return std::nullopt;
        pakAssert(value.valueClass()->isSubclassOf(Self::expectedClass()),
                  "[[value class] isSubclassOfClass:cls]");
        return Self::taken(std::move(value));
    }
};

template <>
struct PakFieldTraits<std::string> : PakClassFieldTraits<std::string, PakFieldTraits<std::string>> {
    static const PakClass& expectedClass() { return PakClass::stringClass(); }
    static void write(const std::string& value, PakOutputStream& stream, int32_t tag) {
        stream.writeString(value, tag);
    }
    static std::string taken(PakValue&& value) { return std::string(value.stringValue()); }
    /// Without a copy; good as long as the source of the stream.
    static std::optional<std::string_view> unpack(PakInputStream& stream,
                                                  const PakPropertyInfo& info) {
        if (!info.ext) return stream.readStringView(static_cast<int32_t>(info.tag), info.flag);
        // Declared as a container: what is there is refused like any value of a wrong class.
        PakClassFieldTraits::unpack(stream, info);
        return std::nullopt;
    }
};

template <>
struct PakFieldTraits<PakData> : PakClassFieldTraits<PakData, PakFieldTraits<PakData>> {
    static const PakClass& expectedClass() { return PakClass::dataClass(); }
    static void write(const PakData& value, PakOutputStream& stream, int32_t tag) {
        stream.writeData(value, tag);
    }
    static PakData taken(PakValue&& value) {
        const auto bytes = value.dataValue();
        return {bytes.begin(), bytes.end()};
    }
};

template <>
struct PakFieldTraits<PakArray> : PakClassFieldTraits<PakArray, PakFieldTraits<PakArray>> {
    static const PakClass& expectedClass() { return PakClass::arrayClass(); }
    static void write(const PakArray& value, PakOutputStream& stream, int32_t tag) {
        stream.writeArray(value, tag);
    }
    static PakArray taken(PakValue&& value) { return std::move(*value.array()); }
};

template <>
struct PakFieldTraits<PakDictionary>
    : PakClassFieldTraits<PakDictionary, PakFieldTraits<PakDictionary>> {
    static const PakClass& expectedClass() { return PakClass::dictionaryClass(); }
    static void write(const PakDictionary& value, PakOutputStream& stream, int32_t tag) {
        stream.writeDictionary(value, tag);
    }
    static PakDictionary taken(PakValue&& value) { return std::move(*value.dictionary()); }
};

/// An object that may be absent: left out when optional, refused with "0" when required.
inline bool pakPresent(bool present, const PakPropertyInfo& info) {
    pakAssert(present || !info.flag, "0");
    return present;
}

template <>
struct PakFieldTraits<PakNumber> : PakClassFieldTraits<PakNumber, PakFieldTraits<PakNumber>> {
    static const PakClass& expectedClass() { return PakClass::numberClass(); }
    static PakValue wrapped(const PakNumber& value) { return value.number; }
    static void pack(const PakNumber& value, PakOutputStream& stream, const PakPropertyInfo& info,
                     const PakObject* /*reference*/) {
        if (pakPresent(!value.number.isNothing(), info))
            stream.writeNumber(value.number, static_cast<int32_t>(info.tag), true);
    }
    static PakNumber taken(PakValue&& value) { return {std::move(value)}; }
};

template <typename T>
struct PakFieldTraits<std::optional<T>> {
    static std::string encodedType() { return PakFieldTraits<T>::encodedType(); }
    static const std::optional<T>& wrapped(const std::optional<T>& value) { return value; }

    static void pack(const std::optional<T>& value, PakOutputStream& stream,
                     const PakPropertyInfo& info, const PakObject* reference) {
        if (pakPresent(value.has_value(), info))
            PakFieldTraits<T>::pack(*value, stream, info, reference);
    }

    static std::optional<std::optional<T>> unpack(PakInputStream& stream,
                                                  const PakPropertyInfo& info) {
        auto value = PakFieldTraits<T>::unpack(stream, info);
        if (!value) return std::nullopt;
        return std::optional<std::optional<T>>(std::in_place, std::move(*value));
    }
};

template <typename T>
struct PakFieldTraits<std::shared_ptr<T>>
    : PakClassFieldTraits<std::shared_ptr<T>, PakFieldTraits<std::shared_ptr<T>>> {
    static const PakClass& expectedClass() { return T::pakClass(); }
    static void pack(const std::shared_ptr<T>& value, PakOutputStream& stream,
                     const PakPropertyInfo& info, const PakObject* reference) {
        // The reference instance as a whole stands for "not set".
        const bool unset = !info.flag && value.get() == reference;
        if (pakPresent(value != nullptr, info) && !unset)
            stream.writeObject(*value, static_cast<int32_t>(info.tag));
    }
    static std::shared_ptr<T> taken(PakValue&& value) {
        return std::static_pointer_cast<T>(value.object());
    }
};

}  // namespace vorla
