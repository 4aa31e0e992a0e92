#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

namespace analyticspak {

/// A growing run of bytes. Keeps its memory when cleared.
class BufferWriter {
 public:
    [[nodiscard]] size_t length() const { return length_; }
    [[nodiscard]] std::span<const uint8_t> bytes() const { return {bytes_.get(), length_}; }
    void clear() { length_ = 0; }

    /// Makes room for `count` bytes behind those written so far; gives their place. It is good, and
    /// `advance` allowed, until the next call.
    uint8_t* reserve(size_t count) {
        if (capacity_ - length_ < count) [[unlikely]]
            grow(count);
        return bytes_.get() + length_;
    }
    /// Counts bytes stored at the reserved place as written.
    void advance(size_t count) { length_ += count; }

    void writeBuf(const void* from, size_t count) {
        uint8_t* const to = reserve(count);
        if (count > 0) std::memcpy(to, from, count);
        length_ += count;
    }

 private:
    void grow(size_t count);

    std::unique_ptr<uint8_t[]> bytes_;
    size_t length_ = 0;
    size_t capacity_ = 0;
};

}  // namespace analyticspak
