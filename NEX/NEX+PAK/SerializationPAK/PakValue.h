#pragma once

#include <concepts>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "NEX/NEX+PAK/SerializationPAK/PakFormat.h"

class PakClass;
class PakObject;
class PakValue;

/// Orders values so that they can be keys: numbers by value whatever their stored type, strings
/// and byte strings by their bytes, containers member by member, objects by identity. Values of
/// different kinds are ordered by kind. Not-a-number equals itself here and lies below all numbers.
struct PakValueOrder {
    using is_transparent = void;
    bool operator()(const PakValue& a, const PakValue& b) const;
    bool operator()(const PakValue& a, std::string_view b) const;
    bool operator()(std::string_view a, const PakValue& b) const;
};

using PakObjectPtr = std::shared_ptr<PakObject>;
using PakArray = std::vector<PakValue>;
using PakDictionary = std::map<PakValue, PakValue, PakValueOrder>;

namespace vorla {

/// Bytes behind one pointer, so that a value stays at two words; none at all for an empty run.
class PackedBytes {
 public:
    PackedBytes() = default;
    explicit PackedBytes(std::span<const uint8_t> bytes);
    PackedBytes(const PackedBytes& other) : PackedBytes(other.bytes()) {}
    PackedBytes(PackedBytes&&) noexcept = default;
    PackedBytes& operator=(const PackedBytes& other) { return *this = PackedBytes(other); }
    PackedBytes& operator=(PackedBytes&&) noexcept = default;
    ~PackedBytes() = default;

    [[nodiscard]] std::span<const uint8_t> bytes() const {
        if (!block_) return {};
        uint32_t size = 0;
        std::memcpy(&size, block_.get(), sizeof size);
        return {block_.get() + sizeof size, size};
    }

 private:
    /// Four bytes of length, then the bytes.
    std::unique_ptr<uint8_t[]> block_;
};
struct PackedText : PackedBytes {
    using PackedBytes::PackedBytes;
};

/// A pointer with the meaning of what it points to: copying it copies that.
template <typename T>
class PakBox {
 public:
    explicit PakBox(T value) : value_(std::make_unique<T>(std::move(value))) {}
    PakBox(const PakBox& other) : value_(std::make_unique<T>(*other.value_)) {}
    PakBox(PakBox&&) noexcept = default;
    PakBox& operator=(const PakBox& other) { return *this = PakBox(other); }
    PakBox& operator=(PakBox&&) noexcept = default;
    ~PakBox() = default;

    [[nodiscard]] const T& get() const { return *value_; }
    [[nodiscard]] T& get() { return *value_; }

 private:
    std::unique_ptr<T> value_;
};

template <typename T>
concept PakScalar = std::is_arithmetic_v<T> && !std::same_as<T, long double>;

/// The type under which a number is kept: one of fixed width for each built-in type.
template <PakScalar T>
auto storedNumber(T value) {
    if constexpr (std::same_as<T, bool> || std::floating_point<T>)
        return value;
    else if constexpr (sizeof(T) == 1)
        return static_cast<std::conditional_t<std::is_signed_v<T>, int8_t, uint8_t>>(value);
    else if constexpr (sizeof(T) == 2)
        return static_cast<std::conditional_t<std::is_signed_v<T>, int16_t, uint16_t>>(value);
    else if constexpr (sizeof(T) == 4)
        return static_cast<std::conditional_t<std::is_signed_v<T>, int32_t, uint32_t>>(value);
    else
        return static_cast<std::conditional_t<std::is_signed_v<T>, int64_t, uint64_t>>(value);
}

/// A number as signed 64 bits: cut towards zero, kept within the range, 0 for not-a-number.
inline int64_t integerOf(double number) {
    // 2^63 is exact as a double, the largest 64-bit integer is not.
    constexpr double kLimit = 9223372036854775808.0;
    if (number != number) return 0;
    if (number >= kLimit) return INT64_MAX;
    return number < -kLimit ? INT64_MIN : static_cast<int64_t>(number);
}

}  // namespace vorla

/// Any value that a stream can carry: nothing, a number that keeps its stored type, a string
/// (UTF-8), a byte string, an array, a dictionary or an object. Two words; copies are deep but for
/// objects, which are shared. A moved-from value may only be destroyed or assigned to.
class PakValue {
 public:
    enum class Kind : uint8_t { Nothing, Dictionary, Array, Number, Object, String, Data };

    PakValue();
    PakValue(std::nullopt_t) : PakValue() {}
    template <vorla::PakScalar T>
    PakValue(T number) : storage_(vorla::storedNumber(number)) {}
    PakValue(std::string_view text);
    PakValue(const char* text) : PakValue(std::string_view(text)) {}
    PakValue(const std::string& text) : PakValue(std::string_view(text)) {}
    PakValue(std::span<const uint8_t> data);
    PakValue(const PakData& data) : PakValue(std::span<const uint8_t>(data)) {}
    PakValue(PakArray array);
    PakValue(PakDictionary dictionary);
    /// A null pointer becomes nothing.
    PakValue(PakObjectPtr object);
    template <std::derived_from<PakObject> T>
    PakValue(std::shared_ptr<T> object) : PakValue(PakObjectPtr(std::move(object))) {}
    template <typename T>
    PakValue(std::optional<T> value) : PakValue() {
        if (value) *this = PakValue(std::move(*value));
    }

    PakValue(const PakValue&);
    PakValue(PakValue&&) noexcept;
    PakValue& operator=(const PakValue&);
    PakValue& operator=(PakValue&&) noexcept;
    ~PakValue();

    [[nodiscard]] Kind kind() const { return kKinds[storage_.index()]; }
    [[nodiscard]] bool isNothing() const { return kind() == Kind::Nothing; }
    explicit operator bool() const { return !isNothing(); }

    /// The class of the value; null for nothing.
    [[nodiscard]] const PakClass* valueClass() const;

    /// The stored type of a number as one letter: B, c, C, s, S, i, I, q, Q, f or d; 0 otherwise.
    [[nodiscard]] char numberType() const { return kLetters[storage_.index()]; }
    /// A number as signed 64 bits: an unsigned one above the signed range comes out negative, a
    /// floating-point one is cut towards zero and kept within the range, not-a-number is 0. 0 for
    /// anything that is no number.
    [[nodiscard]] int64_t int64Value() const;
    [[nodiscard]] double doubleValue() const;
    [[nodiscard]] float floatValue() const { return static_cast<float>(doubleValue()); }

    /// Views into the value, good until it changes; empty when it is of another kind.
    [[nodiscard]] std::string_view stringValue() const;
    [[nodiscard]] std::span<const uint8_t> dataValue() const;
    /// The container, or null when the value is none such.
    [[nodiscard]] const PakArray* array() const;
    [[nodiscard]] PakArray* array();
    [[nodiscard]] const PakDictionary* dictionary() const;
    [[nodiscard]] PakDictionary* dictionary();
    [[nodiscard]] PakObjectPtr object() const;
    [[nodiscard]] PakObject* objectPointer() const;

    /// The value as text for logs.
    [[nodiscard]] std::string description() const;

    /// Below zero, zero or above, in the order of PakValueOrder.
    static int compare(const PakValue& a, const PakValue& b);
    friend bool operator==(const PakValue& a, const PakValue& b) { return compare(a, b) == 0; }

 private:
    using Storage = std::variant<std::monostate, bool, int8_t, uint8_t, int16_t, uint16_t, int32_t,
                                 uint32_t, int64_t, uint64_t, float, double, vorla::PackedText,
                                 vorla::PackedBytes, vorla::PakBox<PakArray>,
                                 vorla::PakBox<PakDictionary>, vorla::PakBox<PakObjectPtr>>;
    // In the order of the alternatives of the storage.
    static constexpr Kind kKinds[] = {
        Kind::Nothing, Kind::Number, Kind::Number, Kind::Number,     Kind::Number, Kind::Number,
        Kind::Number,  Kind::Number, Kind::Number, Kind::Number,     Kind::Number, Kind::Number,
        Kind::String,  Kind::Data,   Kind::Array,  Kind::Dictionary, Kind::Object};
    static constexpr char kLetters[std::size(kKinds)] = {0,   'B', 'c', 'C', 's', 'S',
                                                         'i', 'I', 'q', 'Q', 'f', 'd'};
    static_assert(std::size(kKinds) == std::variant_size_v<Storage>);
    Storage storage_;
};
static_assert(sizeof(PakValue) == 16, "lists of numbers rely on values of two words");

inline int64_t PakValue::int64Value() const {
    // By hand: a visit of so many alternatives is a call through a table.
    switch (numberType()) {
        case 'B':
            return *std::get_if<bool>(&storage_) ? 1 : 0;
        case 'c':
            return *std::get_if<int8_t>(&storage_);
        case 'C':
            return *std::get_if<uint8_t>(&storage_);
        case 's':
            return *std::get_if<int16_t>(&storage_);
        case 'S':
            return *std::get_if<uint16_t>(&storage_);
        case 'i':
            return *std::get_if<int32_t>(&storage_);
        case 'I':
            return *std::get_if<uint32_t>(&storage_);
        case 'q':
            return *std::get_if<int64_t>(&storage_);
        case 'Q':
            return static_cast<int64_t>(*std::get_if<uint64_t>(&storage_));
        case 'f':
            return vorla::integerOf(*std::get_if<float>(&storage_));
        case 'd':
            return vorla::integerOf(*std::get_if<double>(&storage_));
        default:
            return 0;
    }
}

inline std::string_view PakValue::stringValue() const {
    const auto* text = std::get_if<vorla::PackedText>(&storage_);
    if (!text) return {};
    const auto bytes = text->bytes();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}
