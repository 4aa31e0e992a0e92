#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "NEX/NEX+PAK/SerializationPAK/PakStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakValue.h"

/// Writes fields behind one another into a buffer that grows by doubling.
///
/// Every failed check here is a mistake of the program and ends it with the text of the check. An
/// absent value is left out when it is not required and fails with "required == NO" when it is. A
/// value of the wrong kind fails with the test of its kind. Tags above 255 keep their low eight
/// bits.
class PakOutputStream : public PakStream {
 public:
    /// A stream of the default capacity, 4096 bytes.
    PakOutputStream();
    /// Below 1 counts as 1.
    explicit PakOutputStream(int32_t initWithBufferSize);
    ~PakOutputStream() override;

    static std::unique_ptr<PakOutputStream> stream();
    /// For a caller who knows what the value takes: 64 bytes more, for the heads.
    static std::unique_ptr<PakOutputStream> streamWithCapability(int32_t capability);

    /// A copy of what was written so far.
    [[nodiscard]] std::optional<PakData> data() const override;
    /// The same without the copy, good until the next write.
    [[nodiscard]] std::span<const uint8_t> written() const {
        return {streamBuffer_, static_cast<size_t>(cursor_)};
    }

    // Without a head.
    void writeTag(int32_t tag, int32_t type);
    void writeInt1(int8_t value);
    void writeInt2(int16_t value);
    void writeInt4(int32_t value);
    void writeInt8(int64_t value);
    void writeBytes(const void* bytes, int32_t size);
    void fillWithZero(int32_t count);

    // Whole fields.
    /// In the smallest form. Always inlined: each declared field has its own copy and mostly values
    /// of one width, so that the branches are foreseen.
    [[gnu::always_inline]] void writeInt(int64_t value, int32_t tag);
    void writeFloat(float value, int32_t tag);
    void writeDouble(double value, int32_t tag);
    void writeNumber(const PakValue& number, int32_t tag, bool required);
    void writeString(const PakValue& string, int32_t tag, bool required);
    void writeData(const PakValue& data, int32_t tag, bool required);
    void writeArray(const PakValue& array, int32_t tag, bool required);
    void writeDictionary(const PakValue& dictionary, int32_t tag, bool required);
    void writeObject(const PakValue& object, int32_t tag, bool required);
    /// By the kind of the value. Nothing at all fails with "0", required or not.
    void writeAnything(const PakValue& value, int32_t tag, bool required);

    // The same for values that are there for certain, without wrapping them first.
    void writeString(std::string_view string, int32_t tag);
    void writeData(std::span<const uint8_t> data, int32_t tag);
    void writeArray(const PakArray& array, int32_t tag);
    void writeDictionary(const PakDictionary& dictionary, int32_t tag);
    void writeObject(PakObject& object, int32_t tag);

 private:
    [[nodiscard]] bool hasRoom(int64_t size) const {
        return streamSize_ - int64_t{cursor_} >= size && streamSize_ != 0;
    }
    void preventBufferOverflow(int64_t size) {
        if (!hasRoom(size)) [[unlikely]]
            grow(size);
    }
    [[gnu::cold]] void grow(int64_t size);
    /// Writes a head, makes room for the payload and moves over both; returns the payload's place.
    uint8_t* beginField(int32_t tag, int32_t type, int64_t payload);
    void writeIntNearEnd(int64_t value, int32_t tag);
    [[nodiscard]] uint8_t* place() const { return streamBuffer_ + cursor_; }

    static constexpr int32_t kDefaultCapacity = 4096;
    /// The longest head and the longest integer.
    static constexpr int32_t kMostForInt = 2 + 8;
    /// What nested structures are written to, one after another; made for the first.
    std::unique_ptr<PakOutputStream> members_;
};

inline uint8_t* PakOutputStream::beginField(int32_t tag, int32_t type, int64_t payload) {
    const int32_t head = tag < 15 ? 1 : 2;
    preventBufferOverflow(head + payload);
    uint8_t* const at = place();
    cursor_ += static_cast<int32_t>(head + payload);
    if (tag < 15) {
        at[0] = static_cast<uint8_t>((tag & 0x0F) << 4 | (type & 0x0F));
    } else {
        at[0] = static_cast<uint8_t>(0xF0 | (type & 0x0F));
        at[1] = static_cast<uint8_t>(tag);
    }
    return at + head;
}

inline void PakOutputStream::writeInt(int64_t value, int32_t tag) {
    if (!hasRoom(kMostForInt)) [[unlikely]]
        return writeIntNearEnd(value, tag);
    uint8_t* const at = place();
    const int32_t head = tag < 15 ? 1 : 2;
    const int32_t high = tag < 15 ? tag << 4 : 0xF0;
    // The payload overwrites the second byte of a head that has only one.
    at[1] = static_cast<uint8_t>(tag);
    int32_t type = PAK_TYPE_ZERO, payload = 0;
    if (value == 0) {
    } else if (value == static_cast<int8_t>(value)) {
        type = PAK_TYPE_INT1;
        payload = pack_8(at + head, static_cast<int8_t>(value));
    } else if (value == static_cast<int16_t>(value)) {
        type = PAK_TYPE_INT2;
        payload = pack_16(at + head, static_cast<int16_t>(value));
    } else if (value == static_cast<int32_t>(value)) {
        type = PAK_TYPE_INT4;
        payload = pack_32(at + head, static_cast<int32_t>(value));
    } else {
        type = PAK_TYPE_INT8;
        payload = pack_64(at + head, value);
    }
    at[0] = static_cast<uint8_t>(high | type);
    cursor_ += head + payload;
}
