#include "NEX/NEX+PAK/SerializationPAK/PakOutputStream.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakObject.h"

using vorla::pakAssert;

namespace {

/// True when there is something to write; the value is then known to be of the kind.
bool present(const PakValue& value, PakValue::Kind kind, bool required, const char* kindTest) {
    if (value.isNothing()) {
        pakAssert(!required, "required == NO");
        return false;
    }
    pakAssert(value.kind() == kind, kindTest);
    return true;
}

int32_t checkedSize(size_t size) {
    // Beyond the range of the cursor no buffer could be had either.
    pakAssert(size <= std::numeric_limits<int32_t>::max(), "_streamBuffer");
    return static_cast<int32_t>(size);
}

}  // namespace

PakOutputStream::PakOutputStream() : PakOutputStream(kDefaultCapacity) {}

PakOutputStream::PakOutputStream(int32_t initWithBufferSize) {
    streamSize_ = std::max(initWithBufferSize, 1);
    streamBuffer_ = static_cast<uint8_t*>(std::malloc(static_cast<size_t>(streamSize_)));
    pakAssert(streamBuffer_ != nullptr, "_streamBuffer");
}

PakOutputStream::~PakOutputStream() {
    std::free(streamBuffer_);
}

std::unique_ptr<PakOutputStream> PakOutputStream::stream() {
    return std::make_unique<PakOutputStream>();
}

std::unique_ptr<PakOutputStream> PakOutputStream::streamWithCapability(int32_t capability) {
    const int64_t size = std::min<int64_t>(int64_t{capability} + 64, INT32_MAX);
    return std::make_unique<PakOutputStream>(static_cast<int32_t>(size));
}

std::optional<PakData> PakOutputStream::data() const {
    return PakData(streamBuffer_, streamBuffer_ + cursor_);
}

void PakOutputStream::grow(int64_t size) {
    pakAssert(streamSize_ != 0, "_streamSize != 0");
    int64_t capacity = streamSize_;
    while (capacity - cursor_ < size) capacity *= 2;
    pakAssert(capacity <= std::numeric_limits<int32_t>::max(), "_streamBuffer");
    void* moved = std::realloc(streamBuffer_, static_cast<size_t>(capacity));
    pakAssert(moved != nullptr, "_streamBuffer");
    streamBuffer_ = static_cast<uint8_t*>(moved);
    streamSize_ = static_cast<int32_t>(capacity);
}

void PakOutputStream::writeTag(int32_t tag, int32_t type) {
    beginField(tag, type, 0);
}

void PakOutputStream::writeInt1(int8_t value) {
    preventBufferOverflow(1);
    cursor_ += pack_8(place(), value);
}

void PakOutputStream::writeInt2(int16_t value) {
    preventBufferOverflow(2);
    cursor_ += pack_16(place(), value);
}

void PakOutputStream::writeInt4(int32_t value) {
    preventBufferOverflow(4);
    cursor_ += pack_32(place(), value);
}

void PakOutputStream::writeInt8(int64_t value) {
    preventBufferOverflow(8);
    cursor_ += pack_64(place(), value);
}

void PakOutputStream::writeBytes(const void* bytes, int32_t size) {
    preventBufferOverflow(size);
    if (size <= 0) return;
    std::memcpy(place(), bytes, static_cast<size_t>(size));
    cursor_ += size;
}

void PakOutputStream::fillWithZero(int32_t count) {
    preventBufferOverflow(count);
    if (count <= 0) return;
    std::memset(place(), 0, static_cast<size_t>(count));
    cursor_ += count;
}

void PakOutputStream::writeIntNearEnd(int64_t value, int32_t tag) {
    if (value == 0)
        beginField(tag, PAK_TYPE_ZERO, 0);
    else if (value == static_cast<int8_t>(value))
        pack_8(beginField(tag, PAK_TYPE_INT1, 1), static_cast<int8_t>(value));
    else if (value == static_cast<int16_t>(value))
        pack_16(beginField(tag, PAK_TYPE_INT2, 2), static_cast<int16_t>(value));
    else if (value == static_cast<int32_t>(value))
        pack_32(beginField(tag, PAK_TYPE_INT4, 4), static_cast<int32_t>(value));
    else
        pack_64(beginField(tag, PAK_TYPE_INT8, 8), value);
}

void PakOutputStream::writeFloat(float value, int32_t tag) {
    pack_32(beginField(tag, PAK_TYPE_FLOAT, 4), std::bit_cast<int32_t>(value));
}

void PakOutputStream::writeDouble(double value, int32_t tag) {
    pack_64(beginField(tag, PAK_TYPE_DOUBLE, 8), std::bit_cast<int64_t>(value));
}

void PakOutputStream::writeNumber(const PakValue& number, int32_t tag, bool required) {
    if (!present(number, PakValue::Kind::Number, required,
                 "[number isKindOfClass:[NSNumber class]]"))
        return;
    switch (number.numberType()) {
        case 'd':
            return writeDouble(number.doubleValue(), tag);
        case 'f':
            return writeFloat(number.floatValue(), tag);
        default:
            return writeInt(number.int64Value(), tag);
    }
}

void PakOutputStream::writeString(const PakValue& string, int32_t tag, bool required) {
    if (present(string, PakValue::Kind::String, required,
                "[string isKindOfClass:[NSString class]]"))
        writeString(string.stringValue(), tag);
}

void PakOutputStream::writeString(std::string_view string, int32_t tag) {
    const int32_t size = checkedSize(string.size());
    if (size == 0) {
        *beginField(tag, PAK_TYPE_STRING1, 1) = 0;
        return;
    }
    uint8_t* to = nullptr;
    if (size < 256) {
        to = beginField(tag, PAK_TYPE_STRING1, int64_t{1} + size);
        to += pack_8(to, static_cast<int8_t>(size));
    } else {
        to = beginField(tag, PAK_TYPE_STRING4, int64_t{4} + size);
        to += pack_32(to, size);
    }
    std::memcpy(to, string.data(), string.size());
}

void PakOutputStream::writeData(const PakValue& data, int32_t tag, bool required) {
    if (present(data, PakValue::Kind::Data, required, "[data isKindOfClass:[NSData class]]"))
        writeData(data.dataValue(), tag);
}

void PakOutputStream::writeData(std::span<const uint8_t> data, int32_t tag) {
    const int32_t size = checkedSize(data.size());
    writeTag(tag, PAK_TYPE_SIMPLE_LIST);
    writeTag(0, PAK_TYPE_INT1);
    writeInt(size, 0);
    writeBytes(data.data(), size);
}

void PakOutputStream::writeArray(const PakValue& array, int32_t tag, bool required) {
    if (present(array, PakValue::Kind::Array, required, "[array isKindOfClass:[NSArray class]]"))
        writeArray(*array.array(), tag);
}

void PakOutputStream::writeArray(const PakArray& array, int32_t tag) {
    writeTag(tag, PAK_TYPE_LIST);
    writeInt(static_cast<int64_t>(array.size()), 0);
    for (const PakValue& element : array) {
        // Numbers without the detour: long lists are mostly made of them.
        const char type = element.numberType();
        if (type != 0 && type != 'f' && type != 'd')
            writeInt(element.int64Value(), 0);
        else
            writeAnything(element, 0, true);
    }
}

void PakOutputStream::writeDictionary(const PakValue& dictionary, int32_t tag, bool required) {
    if (present(dictionary, PakValue::Kind::Dictionary, required,
                "[dictionary isKindOfClass:[NSDictionary class]]"))
        writeDictionary(*dictionary.dictionary(), tag);
}

void PakOutputStream::writeDictionary(const PakDictionary& dictionary, int32_t tag) {
    writeTag(tag, PAK_TYPE_MAP);
    writeInt(static_cast<int64_t>(dictionary.size()), 0);
    for (const auto& [key, value] : dictionary) {
        writeAnything(key, 0, true);
        writeAnything(value, 1, true);
    }
}

void PakOutputStream::writeObject(const PakValue& object, int32_t tag, bool required) {
    if (present(object, PakValue::Kind::Object, required,
                "[object isKindOfClass:[PakObject class]]"))
        writeObject(*object.objectPointer(), tag);
}

void PakOutputStream::writeObject(PakObject& object, int32_t tag) {
    // A stream of its own: a structure may rely on where in its stream it begins.
    if (!members_) members_ = stream();
    members_->setCursor(0);
    object.__pack(*members_);
    writeTag(tag, PAK_TYPE_STRUCT_S);
    writeBytes(members_->streamBuffer(), members_->cursor());
    writeTag(0, PAK_TYPE_STRUCT_E);
}

void PakOutputStream::writeAnything(const PakValue& value, int32_t tag, bool required) {
    switch (value.kind()) {
        case PakValue::Kind::Dictionary:
            return writeDictionary(value, tag, required);
        case PakValue::Kind::Array:
            return writeArray(value, tag, required);
        case PakValue::Kind::Number:
            return writeNumber(value, tag, required);
        case PakValue::Kind::Object:
            return writeObject(value, tag, required);
        case PakValue::Kind::String:
            return writeString(value.stringValue(), tag);
        case PakValue::Kind::Data:
            return writeData(value, tag, required);
        case PakValue::Kind::Nothing:
            vorla::pakFail("0");
    }
}
