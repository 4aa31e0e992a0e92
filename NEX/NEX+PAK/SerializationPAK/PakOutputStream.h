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
    void writeInt(int64_t value, int32_t tag);
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
    void preventBufferOverflow(int64_t size) {
        if (streamSize_ - int64_t{cursor_} < size || streamSize_ == 0) [[unlikely]]
            grow(size);
    }
    void grow(int64_t size);
    /// Writes a head, makes room for the payload and moves over both; gives the payload's place.
    uint8_t* beginField(int32_t tag, int32_t type, int32_t payload);
    [[nodiscard]] uint8_t* place() const { return streamBuffer_ + cursor_; }

    static constexpr int32_t kDefaultCapacity = 4096;
    /// The buffer while it is one of exactly the default capacity.
    uint8_t* spare_ = nullptr;
};
