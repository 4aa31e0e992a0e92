#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

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
    /// Moves over bytes and gives them where they are.
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

}  // namespace analyticspak
