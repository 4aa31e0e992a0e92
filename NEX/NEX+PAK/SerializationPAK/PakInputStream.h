#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "NEX/NEX+PAK/SerializationPAK/PakLimits.h"
#include "NEX/NEX+PAK/SerializationPAK/PakPair.h"
#include "NEX/NEX+PAK/SerializationPAK/PakStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakValue.h"

/// Reads fields in their order. A strict and trusting reader: a field is looked for only where the
/// cursor stands, nothing is searched for, so unknown fields may only stand behind the known ones;
/// and bytes that break a promise end the process with the text of the failed check. It never reads
/// outside its source, whatever the bytes: a field that is cut short counts as absent when its head
/// is missing and fails with "_cursor + length <= _streamSize" when its payload is. What its
/// containers and objects take is limited to 16 bytes for each byte of the stream (or 64 KiB, if
/// that is more) where failures raise (see PakFailuresRaise), and to 64 MiB more where they end the
/// process. For data that may be damaged use `analyticspak::PakInputStream`.
///
/// Optional results are empty for an absent field (the cursor has then not moved); with `required`
/// an absent field fails with "required == NO".
class PakInputStream : public PakStream {
 public:
    /// Looks at bytes that the caller keeps alive and unchanged.
    explicit PakInputStream(std::span<const uint8_t> source);
    /// Keeps the bytes itself.
    explicit PakInputStream(PakData source);

    /// Null when there is no data.
    static std::unique_ptr<PakInputStream> streamWithData(std::optional<PakData> data);

    /// A copy of all bytes, wherever the cursor is.
    [[nodiscard]] std::optional<PakData> data() const override;

    /// Type and tag of the last head peeked or read; PAK_TYPE_NONE and 0 before the first.
    [[nodiscard]] int32_t headType() const { return headType_; }
    [[nodiscard]] int32_t headTag() const { return headTag_; }
    /// Length in bytes of the last string read.
    [[nodiscard]] int32_t stringLength() const { return stringLength_; }

    /// Looks at the head under the cursor. False, and nothing changed, when there is none.
    bool peakHead();
    /// The same and moves over it.
    bool readHead();

    // Without a head.
    int8_t readInt1();
    int16_t readInt2();
    int32_t readInt4();
    int64_t readInt8();
    float readFloat();
    double readDouble();
    /// A copy that the caller owns.
    std::unique_ptr<uint8_t[]> readBytes(uint32_t length);
    PakData readDataWithSize(uint32_t size);
    /// Moves on, at most to the end.
    void skip(int64_t count);

    // Fields that must be there: another tag fails with "_headTag == tag".
    int64_t readInt(int32_t tag);
    float readFloat(int32_t tag);
    double readDouble(int32_t tag);

    // Fields that may be absent.
    /// A number of the kind and width that was stored.
    PakValue readNumber(int32_t tag, bool required);
    /// The same converted to the type of a number: integers are cut to its width, see PakValue.
    /// Always inlined: each declared field has its own copy and mostly numbers of one width, so
    /// that the branches are foreseen.
    template <vorla::PakScalar T>
    [[gnu::always_inline]] std::optional<T> readNumberAs(int32_t tag, bool required);
    /// Absent too when the bytes are no well-formed UTF-8.
    std::optional<std::string> readString(int32_t tag, bool required);
    /// The same without a copy, good as long as the source.
    std::optional<std::string_view> readStringView(int32_t tag, bool required);
    /// Its three failures (absent though required, wrong type, wrong element type) raise
    /// PakInconsistencyException with an empty text.
    std::optional<PakData> readData(int32_t tag, bool required);
    /// The same without a copy, good as long as the source.
    std::optional<std::span<const uint8_t>> readDataView(int32_t tag, bool required);
    PakObjectPtr readObject(int32_t tag, bool required, const PakClass& description);
    std::optional<PakArray> readArray(int32_t tag, bool required,
                                      const PakDescription& description);
    std::optional<PakDictionary> readDictionary(int32_t tag, bool required,
                                                const PakDescription& description);
    /// As `readString`, but what comes back empty or absent is decoded once more with `utf8Decode`,
    /// from as many bytes before the cursor as the last string read had.
    std::optional<std::string> readUTF8String(int32_t tag, bool required,
                                              const PakDescription& description = {});
    /// By the description: a pair stands for a map or a list, a class for itself.
    PakValue readAnything(int32_t tag, bool required, const PakDescription& description);

    /// A forgiving decoder for bytes that are no UTF-8. It yields UTF-16 units, one for each
    /// sequence, with its own reading of two-, four- and five-byte sequences, which peers rely on.
    /// Nothing for an absent or empty input.
    static std::optional<std::u16string> utf8Decode(const uint8_t* bytes, int32_t length);

 private:
    class Nesting;
    /// Moves over the head of the wanted field. False for an absent one that is not required.
    bool beginField(int32_t tag, bool required) {
        if (cursor_ >= 0 && cursor_ < streamSize_ && tag < 15) [[likely]] {
            const uint8_t head = streamBuffer_[cursor_];
            if (head >> 4 == tag) [[likely]] {
                headType_ = head & 0x0F;
                headTag_ = tag;
                ++cursor_;
                return true;
            }
        }
        return beginOtherField(tag, required);
    }
    bool beginOtherField(int32_t tag, bool required);
    std::span<const uint8_t> take(int64_t length);
    std::span<const uint8_t> takeSimpleList();
    /// The number behind the head that was read last.
    int64_t takeInteger() {
        if (headType_ == PAK_TYPE_ZERO) return 0;
        if (headType_ > PAK_TYPE_INT8 || streamSize_ - cursor_ < 8) return takeIntegerNearEnd();
        int64_t value = 0;
        unpack_64(streamBuffer_ + cursor_, value);
        const int32_t width = 1 << headType_;
        cursor_ += width;
        return value >> (64 - 8 * width);
    }
    int64_t takeIntegerNearEnd();
    /// Calls with the number behind the head that was read last, in the kind and width stored.
    template <typename Call>
    auto takeNumber(Call call);
    void skipToStructureEnd();
    /// Takes memory from the budget. Bytes that are really trusted get more.
    void spend(size_t memory) {
        if (!budget_.spend(memory)) [[unlikely]]
            spendTrusted(memory);
    }
    void spendTrusted(size_t memory);
    [[nodiscard]] size_t elementsToReserve(int64_t announced, PakValue::Kind kind);

    int32_t headType_ = PAK_TYPE_NONE;
    int32_t headTag_ = 0;
    int32_t stringLength_ = 0;
    int nesting_ = 0;
    vorla::PakBudget budget_;
    bool trusted_ = false;
    PakData dataHolders_;
};

template <vorla::PakScalar T>
inline std::optional<T> PakInputStream::readNumberAs(int32_t tag, bool required) {
    if (!beginField(tag, required)) return std::nullopt;
    if (headType_ != PAK_TYPE_FLOAT && headType_ != PAK_TYPE_DOUBLE) {
        const int64_t integer = takeInteger();
        if constexpr (std::same_as<T, bool>) return integer != 0;
        return static_cast<T>(integer);
    }
    const double real = headType_ == PAK_TYPE_FLOAT ? double{readFloat()} : readDouble();
    if constexpr (std::same_as<T, bool>) return real != 0;
    if constexpr (std::floating_point<T>) return static_cast<T>(real);
    return static_cast<T>(vorla::integerOf(real));
}
