#include "NEX/NEX+PAK/SerializationPAK/compact/PakBuffer.h"

#include <algorithm>

#include "NEX/NEX+PAK/SerializationPAK/compact/PakDecodeException.h"

namespace analyticspak {

void BufferReader::raisePeek() const {
    raiseDecode("buffer overflow when peekBuf, over %u.", static_cast<unsigned>(length_));
}

void BufferReader::raisePeekWithOffset() const {
    raiseDecode("buffer overflow when peekBuf with offset, over %u.",
                static_cast<unsigned>(length_));
}

void BufferReader::raiseSkip() const {
    raiseDecode("buffer overflow when skip, over %u.", static_cast<unsigned>(length_));
}

void BufferWriter::grow(size_t count) {
    constexpr size_t kFirst = 128;
    const size_t used = length();
    const auto capacity = static_cast<size_t>(end_ - bytes_.get());
    const size_t larger = std::max({used + count, capacity * 2, kFirst});
    auto moved = std::make_unique_for_overwrite<uint8_t[]>(larger);
    if (used > 0) std::memcpy(moved.get(), bytes_.get(), used);
    bytes_ = std::move(moved);
    place_ = bytes_.get() + used;
    end_ = bytes_.get() + larger;
}

}  // namespace analyticspak
