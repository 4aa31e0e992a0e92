#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

#include "NEX/NEX+PAK/SerializationPAK/PakFormat.h"

namespace analyticspak {

/// A place among bytes that the caller keeps alive. Every access is checked against the length; one
/// that would pass the end raises PakDecodeException and leaves the place as it was.
class BufferReader {
 public:
    BufferReader() = default;
    BufferReader(const void* bytes, size_t length)
        : bytes_(static_cast<const uint8_t*>(bytes)), length_(length) {}
    explicit BufferReader(std::span<const uint8_t> bytes)
        : BufferReader(bytes.data(), bytes.size()) {}

    [[nodiscard]] size_t length() const { return length_; }
    [[nodiscard]] size_t position() const { return position_; }
    [[nodiscard]] size_t left() const { return length_ - position_; }
    /// The bytes at the place; `left()` of them may be looked at.
    [[nodiscard]] const uint8_t* place() const { return bytes_ + position_; }

    void readBuf(void* to, size_t count) {
        peekBuf(to, count);
        position_ += count;
    }
    void peekBuf(void* to, size_t count) const {
        if (count > left()) [[unlikely]]
            raisePeek();
        if (count > 0) std::memcpy(to, place(), count);
    }
    /// From `offset` bytes behind the place.
    void peekBuf(void* to, size_t count, size_t offset) const {
        if (offset > left() || count > left() - offset) [[unlikely]]
            raisePeekWithOffset();
        if (count > 0) std::memcpy(to, place() + offset, count);
    }
    void skip(size_t count) {
        if (count > left()) [[unlikely]]
            raiseSkip();
        position_ += count;
    }
    /// Moves over bytes and returns a view of them.
    std::span<const uint8_t> take(size_t count) {
        if (count > left()) [[unlikely]]
            raisePeek();
        const uint8_t* from = place();
        position_ += count;
        return {from, count};
    }

 private:
    [[noreturn]] void raisePeek() const;
    [[noreturn]] void raisePeekWithOffset() const;
    [[noreturn]] void raiseSkip() const;

    const uint8_t* bytes_ = nullptr;
    size_t length_ = 0;
    size_t position_ = 0;
};

/// A growing run of bytes. Keeps its memory when cleared.
class BufferWriter {
 public:
    BufferWriter() = default;
    BufferWriter(BufferWriter&& other) noexcept { swap(other); }
    BufferWriter& operator=(BufferWriter&& other) noexcept {
        swap(other);
        return *this;
    }
    BufferWriter(const BufferWriter&) = delete;
    BufferWriter& operator=(const BufferWriter&) = delete;
    ~BufferWriter() = default;

    void swap(BufferWriter& other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(place_, other.place_);
        std::swap(end_, other.end_);
    }

    [[nodiscard]] size_t length() const { return static_cast<size_t>(place_ - bytes_.get()); }
    [[nodiscard]] std::span<const uint8_t> bytes() const { return {bytes_.get(), length()}; }
    void clear() { place_ = bytes_.get(); }

    /// Makes room for `count` bytes behind those written so far; returns their place. It is good,
    /// and `advance` allowed, until the next call.
    [[gnu::always_inline]] uint8_t* reserve(size_t count) {
        if (static_cast<size_t>(end_ - place_) < count) [[unlikely]]
            grow(count);
        return place_;
    }
    /// Counts bytes stored at the reserved place as written.
    void advance(size_t count) { place_ += count; }

    void writeBuf(const void* from, size_t count) {
        copy(reserve(count), from, count);
        place_ += count;
    }

    /// Stores eight bytes, the highest first. Unlike a store of single bytes this one is known not
    /// to change the writer itself, which can so stay in registers from field to field.
    [[gnu::always_inline]] static void storeWord(uint8_t* to, uint64_t word) {
        if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap64(word);
        reinterpret_cast<Word*>(to)->bits = word;
    }

    /// memcpy, without the call for the short texts that most fields hold.
    [[gnu::always_inline]] static void copy(uint8_t* to, const void* from, size_t count) {
        const auto* const bytes = static_cast<const uint8_t*>(from);
        if (count > 32) {
            std::memcpy(to, bytes, count);
        } else if (count >= 16) {
            copyEnds<16>(to, bytes, count);
        } else if (count >= 8) {
            copyEnds<8>(to, bytes, count);
        } else if (count >= 4) {
            copyEnds<4>(to, bytes, count);
        } else if (count > 0) {
            to[0] = bytes[0];
            to[count / 2] = bytes[count / 2];
            to[count - 1] = bytes[count - 1];
        }
    }

 private:
    struct [[gnu::packed]] Word {
        unsigned long long bits;
    };

    /// Two copies of fixed size that overlap in the middle.
    template <size_t Size>
    static void copyEnds(uint8_t* to, const uint8_t* from, size_t count) {
        uint8_t first[Size], last[Size];
        std::memcpy(first, from, Size);
        std::memcpy(last, from + count - Size, Size);
        std::memcpy(to, first, Size);
        std::memcpy(to + count - Size, last, Size);
    }

    [[gnu::cold]] void grow(size_t count);

    std::unique_ptr<uint8_t[]> bytes_;
    uint8_t* place_ = nullptr;
    uint8_t* end_ = nullptr;
};

/// The head of a field.
struct DataHead {
    uint8_t type = PAK_TYPE_NONE;
    uint8_t tag = 0;

    /// Reads the head at the reader's place without moving; returns its length in bytes.
    size_t peekFrom(const BufferReader& reader) {
        uint8_t first = 0;
        reader.peekBuf(&first, 1);
        type = first & 0x0F;
        tag = first >> 4;
        if (tag < 15) return 1;
        reader.peekBuf(&tag, 1, 1);
        return 2;
    }

    void readFrom(BufferReader& reader) { reader.skip(peekFrom(reader)); }

    void writeTo(BufferWriter& writer) const { writer.advance(storeAt(writer.reserve(8))); }

    /// Stores the head at a place with room for eight bytes; returns its length.
    size_t storeAt(uint8_t* to) const { return storeAt(to, type, tag, 0); }

    /// The same with the first bytes of the payload, the highest first, behind the head. As many of
    /// them are kept as the caller advances by.
    [[gnu::always_inline]] static size_t storeAt(uint8_t* to, uint8_t type, uint8_t tag,
                                                 uint64_t payload) {
        if (tag < 15) {
            const auto head = static_cast<uint64_t>(tag << 4 | type);
            BufferWriter::storeWord(to, head << 56 | payload >> 8);
            return 1;
        }
        const auto head = static_cast<uint64_t>(0xF0U | type) << 8 | tag;
        BufferWriter::storeWord(to, head << 48 | payload >> 16);
        return 2;
    }
};

}  // namespace analyticspak
