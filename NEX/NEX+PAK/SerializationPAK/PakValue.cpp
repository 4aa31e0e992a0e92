#include "NEX/NEX+PAK/SerializationPAK/PakValue.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "NEX/NEX+PAK/SerializationPAK/PakClass.h"
#include "NEX/NEX+PAK/SerializationPAK/PakObject.h"
#include "NEX/NEX+PAK/SerializationPAK/PakStream.h"

namespace vorla {
namespace {

std::span<const uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

std::string_view textOf(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

template <typename T>
int threeWay(const T& a, const T& b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

std::string arrayText(const PakArray& array) {
    std::string text = "(";
    for (const PakValue& element : array) {
        if (text.size() > 1) text += ", ";
        text += element.description();
    }
    return text + ")";
}

std::string dictionaryText(const PakDictionary& dictionary) {
    std::string text = "{";
    for (const auto& [key, value] : dictionary)
        text += key.description() + " = " + value.description() + "; ";
    if (text.size() > 1) text.pop_back();
    return text + "}";
}

template <typename T>
std::string numberText(T number) {
    if constexpr (std::floating_point<T>) {
        char text[40];
        std::snprintf(text, sizeof text, sizeof(T) == 4 ? "%.7g" : "%.16g",
                      static_cast<double>(number));
        return text;
    } else {
        return std::to_string(number);
    }
}

}  // namespace

PackedBytes::PackedBytes(std::span<const uint8_t> bytes) {
    if (bytes.empty()) return;
    if (bytes.size() > std::numeric_limits<int32_t>::max())
        throw std::length_error("a string above the format's range");
    const auto size = static_cast<uint32_t>(bytes.size());
    block_ = std::make_unique_for_overwrite<uint8_t[]>(sizeof size + bytes.size());
    std::memcpy(block_.get(), &size, sizeof size);
    std::memcpy(block_.get() + sizeof size, bytes.data(), bytes.size());
}

}  // namespace vorla

using vorla::PakBox;

PakValue::PakValue() = default;
PakValue::PakValue(std::string_view text) : storage_(vorla::PackedText(vorla::bytesOf(text))) {}
PakValue::PakValue(std::span<const uint8_t> data) : storage_(vorla::PackedBytes(data)) {}
PakValue::PakValue(PakArray array) : storage_(PakBox<PakArray>(std::move(array))) {}
PakValue::PakValue(PakDictionary dictionary)
    : storage_(PakBox<PakDictionary>(std::move(dictionary))) {}
PakValue::PakValue(PakObjectPtr object) {
    if (object) storage_.emplace<PakBox<PakObjectPtr>>(std::move(object));
}

PakValue::PakValue(const PakValue&) = default;
PakValue::PakValue(PakValue&&) noexcept = default;
PakValue& PakValue::operator=(const PakValue&) = default;
PakValue& PakValue::operator=(PakValue&&) noexcept = default;
PakValue::~PakValue() = default;

const PakClass* PakValue::valueClass() const {
    switch (kind()) {
        case Kind::Nothing:
            return nullptr;
        case Kind::Dictionary:
            return &PakClass::dictionaryClass();
        case Kind::Array:
            return &PakClass::arrayClass();
        case Kind::Number:
            return &PakClass::numberClass();
        case Kind::Object:
            return &objectPointer()->dynamicClass();
        case Kind::String:
            return &PakClass::stringClass();
        case Kind::Data:
            return &PakClass::dataClass();
    }
    return nullptr;
}

double PakValue::doubleValue() const {
    return std::visit(
        [](const auto& value) -> double {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(value)>>)
                return static_cast<double>(value);
            else
                return 0;
        },
        storage_);
}

std::span<const uint8_t> PakValue::dataValue() const {
    const auto* data = std::get_if<vorla::PackedBytes>(&storage_);
    return data ? data->bytes() : std::span<const uint8_t>();
}

const PakArray* PakValue::array() const {
    return const_cast<PakValue*>(this)->array();
}

PakArray* PakValue::array() {
    auto* box = std::get_if<PakBox<PakArray>>(&storage_);
    return box ? &box->get() : nullptr;
}

const PakDictionary* PakValue::dictionary() const {
    return const_cast<PakValue*>(this)->dictionary();
}

PakDictionary* PakValue::dictionary() {
    auto* box = std::get_if<PakBox<PakDictionary>>(&storage_);
    return box ? &box->get() : nullptr;
}

PakObjectPtr PakValue::object() const {
    const auto* box = std::get_if<PakBox<PakObjectPtr>>(&storage_);
    return box ? box->get() : nullptr;
}

PakObject* PakValue::objectPointer() const {
    const auto* box = std::get_if<PakBox<PakObjectPtr>>(&storage_);
    return box ? box->get().get() : nullptr;
}

std::string PakValue::description() const {
    switch (kind()) {
        case Kind::Nothing:
            return "(null)";
        case Kind::Dictionary:
            return vorla::dictionaryText(*dictionary());
        case Kind::Array:
            return vorla::arrayText(*array());
        case Kind::Object:
            return objectPointer()->description();
        case Kind::String:
            return std::string(stringValue());
        case Kind::Data:
            return vorla::hexText(dataValue().data(), dataValue().size());
        case Kind::Number:
            break;
    }
    return std::visit(
        [](const auto& value) -> std::string {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(value)>>)
                return vorla::numberText(value);
            else
                return {};
        },
        storage_);
}

namespace vorla {
namespace {

/// Holds every 64-bit integer and every double exactly.
long double exactNumber(const PakValue& number) {
    const char type = number.numberType();
    if (type == 'f' || type == 'd') return number.doubleValue();
    if (type == 'Q') return static_cast<uint64_t>(number.int64Value());
    return number.int64Value();
}

int compareNumbers(const PakValue& a, const PakValue& b) {
    const long double x = exactNumber(a), y = exactNumber(b);
    if (std::isnan(x) || std::isnan(y)) return threeWay(!std::isnan(x), !std::isnan(y));
    return threeWay(x, y);
}

int compareArrays(const PakArray& a, const PakArray& b) {
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        if (const int order = PakValue::compare(a[i], b[i])) return order;
    return threeWay(a.size(), b.size());
}

int compareDictionaries(const PakDictionary& a, const PakDictionary& b) {
    for (auto i = a.begin(), j = b.begin(); i != a.end() && j != b.end(); ++i, ++j) {
        if (const int order = PakValue::compare(i->first, j->first)) return order;
        if (const int order = PakValue::compare(i->second, j->second)) return order;
    }
    return threeWay(a.size(), b.size());
}

}  // namespace
}  // namespace vorla

int PakValue::compare(const PakValue& a, const PakValue& b) {
    if (a.kind() != b.kind()) return vorla::threeWay(a.kind(), b.kind());
    switch (a.kind()) {
        case Kind::Nothing:
            return 0;
        case Kind::Dictionary:
            return vorla::compareDictionaries(*a.dictionary(), *b.dictionary());
        case Kind::Array:
            return vorla::compareArrays(*a.array(), *b.array());
        case Kind::Number:
            return vorla::compareNumbers(a, b);
        case Kind::Object: {
            const std::less<> below;
            if (below(a.objectPointer(), b.objectPointer())) return -1;
            return below(b.objectPointer(), a.objectPointer()) ? 1 : 0;
        }
        case Kind::String:
            return a.stringValue().compare(b.stringValue());
        case Kind::Data:
            return vorla::textOf(a.dataValue()).compare(vorla::textOf(b.dataValue()));
    }
    return 0;
}

bool PakValueOrder::operator()(const PakValue& a, const PakValue& b) const {
    return PakValue::compare(a, b) < 0;
}

bool PakValueOrder::operator()(const PakValue& a, std::string_view b) const {
    if (a.kind() != PakValue::Kind::String) return a.kind() < PakValue::Kind::String;
    return a.stringValue() < b;
}

bool PakValueOrder::operator()(std::string_view a, const PakValue& b) const {
    if (b.kind() != PakValue::Kind::String) return PakValue::Kind::String < b.kind();
    return a < b.stringValue();
}
