#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vorla {

/// What protects the readers from hostile bytes.
struct PakLimits {
    /// Levels of structures, lists and maps inside one another: each takes stack.
    static constexpr int kNestingCompact = 64;
    /// The same for the trusting reader, whose structures are declared by our own classes.
    static constexpr int kNestingStream = 256;
    /// Up to this many elements a list simply grows. An announced count above it is believed only
    /// as far as that many whole fields really follow, for growing by doubling would take several
    /// times the memory of the finished list.
    static constexpr size_t kUncountedElements = 64;
    /// Room that a list gets at once: so few elements take less than the list itself.
    static constexpr size_t kReservedUnseen = 8;
    /// At most so many bytes of memory are reserved ahead for each byte that is left to read: the
    /// fields that follow may be shorter than any element could be.
    static constexpr size_t kMemoryPerByte = 16;
};

/// How many whole fields, whatever their tags, stand one behind another at the start of the bytes;
/// stops at `atMost`. A field that is cut short or nested too deeply ends the count.
size_t countWholeFields(std::span<const uint8_t> bytes, size_t atMost);

/// True when the bytes are well-formed UTF-8 (no overlong forms, no surrogates).
bool isValidUtf8(std::string_view text);

}  // namespace vorla
