#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vorla::crash {

/// Memory set aside at install and handed out piece by piece between the fault and the end. Its
/// pages cost nothing until they are touched. May run after a fault, but for `reserve`.
class Arena {
 public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    /// Takes the address space; true if it is there afterwards.
    bool reserve(size_t size);

    /// Memory for `size` bytes, aligned for anything and zeroed on first use of the arena, or null
    /// when there is no more.
    void* take(size_t size);

    template <typename T>
    std::span<T> takeSpan(size_t count) {
        auto* const place = count > size_ / sizeof(T) ? nullptr : take(count * sizeof(T));
        return {static_cast<T*>(place), place ? count : 0};
    }

    /// Copies a text; empty when there is no room.
    std::string_view keep(std::string_view text);

    [[nodiscard]] size_t left() const { return size_ - used_; }
    /// Has the system take the pages back; what was taken is gone. Not after a fault.
    void discard();
    /// Returns what was taken after `used` said so.
    void rewind(size_t used) { used_ = used; }
    [[nodiscard]] size_t used() const { return used_; }

 private:
    uint8_t* memory_ = nullptr;
    size_t size_ = 0;
    size_t used_ = 0;
};

}  // namespace vorla::crash
