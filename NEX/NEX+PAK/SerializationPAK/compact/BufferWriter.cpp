#include "NEX/NEX+PAK/SerializationPAK/compact/BufferWriter.h"

#include <algorithm>

namespace analyticspak {

void BufferWriter::grow(size_t count) {
    constexpr size_t kFirst = 128;
    const size_t capacity = std::max({length_ + count, capacity_ * 2, kFirst});
    auto larger = std::make_unique_for_overwrite<uint8_t[]>(capacity);
    if (length_ > 0) std::memcpy(larger.get(), bytes_.get(), length_);
    bytes_ = std::move(larger);
    capacity_ = capacity;
}

}  // namespace analyticspak
