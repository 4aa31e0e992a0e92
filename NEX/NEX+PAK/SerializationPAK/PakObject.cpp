#include "NEX/NEX+PAK/SerializationPAK/PakObject.h"

#include <atomic>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakOutputStream.h"

namespace {

constexpr char kNotSupplied[] = "需要由子类重写此方法！";

/// How deep the description being written is nested.
std::atomic<int> descriptionLevel{0};

std::string genTab() {
    return std::string(static_cast<size_t>(descriptionLevel.load()) * 4, ' ');
}

std::string valueText(const std::string& type, const vorla::PakField& field,
                      const PakObject& object) {
    static constexpr std::string_view kNumbers = "iIlLqQsSBfdcC";
    const bool number = type.size() == 1 && kNumbers.find(type[0]) != std::string_view::npos;
    return number || type.starts_with('@') ? field.value(object).description() : "???";
}

}  // namespace

constinit PakClass PakObject::pakClass_{"PakObject", "", nullptr, nullptr, nullptr, nullptr};

PakObject& PakObject::fromData(const PakData& data) {
    PakInputStream stream{std::span<const uint8_t>(data)};
    __unpack(stream);
    return *this;
}

PakData PakObject::toData() {
    PakOutputStream stream;
    __pack(stream);
    return *stream.data();
}

void PakObject::__pack(PakOutputStream& /*stream*/) {
    vorla::pakRaise(kNotSupplied);
}
void PakObject::__unpack(PakInputStream& /*stream*/) {
    vorla::pakRaise(kNotSupplied);
}

std::string PakObject::description() const {
    std::string text = "\r" + genTab() + "{\r";
    ++descriptionLevel;
    dynamicClass().forEachField([&](const vorla::PakField& field) {
        text += genTab() + field.storageName() + ": " +
                valueText(field.encodedType(), field, *this) + "\r";
    });
    --descriptionLevel;
    return text + genTab() + "}\r";
}

void PakObject::encodeWithCoder(PakCoder& coder) {
    coder.encodeDataObject(toData());
}
void PakObject::initWithCoder(PakCoder& coder) {
    fromData(coder.decodeDataObject());
}
