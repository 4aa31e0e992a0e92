#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace vorla {

/// What protects the readers from hostile bytes.
struct PakLimits {
    /// Levels of structures, lists and maps inside one another: each takes stack.
    static constexpr int kNestingCompact = 64;
    /// The same for the trusting reader, whose structures are declared by our own classes.
    static constexpr int kNestingStream = 256;
    /// A few bytes can stand for an element that takes hundreds in memory. What the containers and
    /// objects of a stream take together is bounded by so many bytes for each byte of the stream,
    static constexpr size_t kMemoryPerByte = 16;
    /// but a small stream may always take this much.
    static constexpr size_t kMemoryFree = 64 * 1024;
    /// What the trusting reader may take beyond that of bytes that it is really meant for.
    static constexpr size_t kMemoryTrusted = 64 * 1024 * 1024;
    /// What a block of memory takes besides its contents, and a map's entry besides its pair.
    static constexpr size_t kBlock = 16;
    static constexpr size_t kMapEntry = 32 + kBlock;
};

/// The memory that a stream may still take.
class PakBudget {
 public:
    explicit PakBudget(size_t streamSize)
        : left_(std::max(streamSize * PakLimits::kMemoryPerByte, PakLimits::kMemoryFree)) {}
    /// False, and nothing taken, when there is not so much left.
    [[nodiscard]] bool spend(size_t bytes) {
        if (bytes > left_) return false;
        left_ -= bytes;
        return true;
    }
    void add(size_t bytes) { left_ += bytes; }

 private:
    size_t left_;
};

/// True when the bytes are well-formed UTF-8 (no overlong forms, no surrogates).
bool isValidUtf8(std::string_view text);

}  // namespace vorla
