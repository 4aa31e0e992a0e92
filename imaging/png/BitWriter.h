#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace vorla {

/// Appends bit fields, lowest bit first, to a byte vector. Between `begin` and `end` the vector is
/// enlarged by the announced room and written without further checks; up to 7 bits wait in the
/// writer from one such stretch to the next.
class BitWriter {
 public:
    explicit BitWriter(std::vector<uint8_t>& out) : out_(out) {}

    /// Room for `bits` more bits. Throws std::bad_alloc.
    void begin(uint64_t bits) {
        const size_t size = out_.size();
        out_.resize(size + bits / 8 + 2 * sizeof(uint64_t));
        at_ = out_.data() + size;
    }
    /// Gives back what was not used.
    void end() {
        flush();
        out_.resize(static_cast<size_t>(at_ - out_.data()));
    }

    /// Adds a field; at most 57 bits may be added between two calls of `flush`.
    void add(uint64_t value, unsigned count) {
        waiting_ |= value << count_;
        count_ += count;
    }
    void flush() {
        std::memcpy(at_, &waiting_, sizeof waiting_);
        at_ += count_ >> 3;
        waiting_ >>= count_ & ~7U;
        count_ &= 7;
    }
    /// Fills the current byte up with zero bits.
    void align() {
        if (count_ & 7) add(0, 8 - (count_ & 7));
        flush();
    }
    /// Whole bytes; the writer must be aligned and the room announced.
    void addBytes(const uint8_t* bytes, size_t size) {
        std::memcpy(at_, bytes, size);
        at_ += size;
    }

    /// Goes on where a copy of this writer has come to.
    void takePositionOf(const BitWriter& copy) {
        at_ = copy.at_;
        waiting_ = copy.waiting_;
        count_ = copy.count_;
    }

 private:
    std::vector<uint8_t>& out_;
    uint8_t* at_ = nullptr;
    uint64_t waiting_ = 0;
    unsigned count_ = 0;
};

}  // namespace vorla
