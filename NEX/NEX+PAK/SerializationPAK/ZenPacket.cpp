#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakOutputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/ZenAttributeValues.h"

namespace {

constexpr int32_t kLengthBytes = 4;
constexpr char kFrameMismatch[] =
    "-[ZenPacket __unpack:], 113: assert(stream.streamSize == size) fail!";

}  // namespace

ZenPacket::ZenPacket() : attributes_(ZenAttribute::object()) {}

void ZenPacket::putObjectAttr(std::string_view name, const PakValue& value) {
    ZenAttributeValues::setInAttributes(value, *attributes_, name);
}

void ZenPacket::putObjectAttr(std::string_view name, ZenAttribute::Text type,
                              const PakValue& value) {
    ZenAttributeValues::setInAttributes(value, *attributes_, name, type);
}

void ZenPacket::putDataAttr(std::string_view name, std::span<const uint8_t> value) {
    ZenAttributeValues::setInAttributes(value, *attributes_, name);
}

PakObjectPtr ZenPacket::getObjectAttr(std::string_view name, const PakClass& forClass) const {
    vorla::pakAssert(forClass.isSubclassOf(PakObject::pakClass()),
                     "[theClass isSubclassOfClass:[PakObject class]]");
    return ZenAttributeValues::objectWithName(forClass, name, std::nullopt, *attributes_);
}

std::optional<std::string> ZenPacket::objectKeyWithName(std::string_view name) const {
    return attributes_->typeOfName(name);
}

int32_t ZenPacket::getReturnCode() const {
    return ZenAttributeValues::intValueWithName("", *attributes_);
}

void ZenPacket::__pack(PakOutputStream& stream) {
    setSBuffer(attributes_->attributeData());
    stream.writeInt4(0);
    RequestPacket::__pack(stream);
    pack_32(stream.streamBuffer(), stream.cursor());
}

void ZenPacket::__unpack(PakInputStream& stream) {
    // What is too short for a length contradicts any length.
    if (stream.streamSize() - stream.cursor() < kLengthBytes ||
        stream.readInt4() != stream.streamSize())
        throw NexSerializableException(kFrameMismatch);
    RequestPacket::__unpack(stream);
    attributes_ = ZenAttribute::fromAttributeData(sBuffer());
}

std::string ZenPacket::description() const {
    return "\n--------------- ZenPacket ---------------\n" + headerText() +
           "----------------- Attributes --------------\n" +
           PakValue(attributes_->pak_zenAttributes()).description() + "\n";
}
