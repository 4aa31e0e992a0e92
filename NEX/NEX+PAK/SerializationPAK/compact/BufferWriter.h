#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <utility>

namespace analyticspak {

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

    /// Makes room for `count` bytes behind those written so far; gives their place. It is good, and
    /// `advance` allowed, until the next call.
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

}  // namespace analyticspak
