#include "crash/handler/Arena.h"

#include <sys/mman.h>

#include <cstring>

namespace vorla::crash {

bool Arena::reserve(size_t size) {
    if (memory_) return true;
    void* const memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) return false;
    // Nothing in it helps whoever reads a core dump.
    ::madvise(memory, size, MADV_DONTDUMP);
    memory_ = static_cast<uint8_t*>(memory);
    size_ = size;
    return true;
}

void Arena::discard() {
    if (memory_) ::madvise(memory_, size_, MADV_DONTNEED);
    used_ = 0;
}

void* Arena::take(size_t size) {
    constexpr size_t alignment = 16;
    if (size > left()) return nullptr;
    const size_t rounded = (size + alignment - 1) & ~(alignment - 1);
    void* const place = memory_ + used_;
    used_ = rounded > left() ? size_ : used_ + rounded;
    return place;
}

std::string_view Arena::keep(std::string_view text) {
    auto* const place = static_cast<char*>(take(text.size()));
    if (!place) return {};
    std::memcpy(place, text.data(), text.size());
    return {place, text.size()};
}

}  // namespace vorla::crash
