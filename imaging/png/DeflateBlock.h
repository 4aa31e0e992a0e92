#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/png/BitWriter.h"

namespace vorla {

/// A piece of a deflate block: so many literal bytes, then a repetition of `length` bytes (3 to
/// 258, or 0 for none) from `distance` bytes back (1 to 32768).
struct DeflateSequence {
    uint32_t literals;
    uint16_t length;
    uint16_t distance;  // 32768 fits; the coder never looks farther back
};

/// What the symbols of a block cost in bits, extra bits included; the search for repetitions judges
/// the next block by it. Symbols that did not occur count as rather dear.
struct DeflateCosts {
    std::array<uint8_t, 256> literals;
    std::array<uint8_t, 259> lengths;   ///< by length, from 3 on
    std::array<uint8_t, 30> distances;  ///< by distance slot
};

/// The slot of a distance (RFC 1951, section 3.2.5).
inline unsigned deflateDistanceSlot(unsigned distance) {
    const unsigned offset = distance - 1;
    const auto width = static_cast<unsigned>(std::bit_width(offset));
    return offset < 4 ? offset : (width - 2) * 2 + (offset >> (width - 2));
}

/// Writes one deflate block (RFC 1951) that stands for `bytes`, cut up into `sequences`, as dynamic
/// or stored block, whichever is shorter. Throws std::bad_alloc.
DeflateCosts writeDeflateBlock(BitWriter& writer, std::span<const uint8_t> bytes,
                               std::span<const DeflateSequence> sequences, bool isFinal);

}  // namespace vorla
