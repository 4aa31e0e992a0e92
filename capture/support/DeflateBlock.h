#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "capture/support/BitWriter.h"

namespace vorla {

/// A piece of a deflate block: so many literal bytes, then a repetition of `length` bytes (3 to
/// 258, or 0 for none) from `distance` bytes back (1 to 32768).
struct DeflateSequence {
    uint32_t literals;
    uint16_t length;
    uint16_t distance;  // 32768 fits; the coder never looks farther back
};

/// Writes one deflate block (RFC 1951) that stands for `bytes`, cut up into `sequences`, as dynamic
/// or stored block, whichever is shorter. Gives the mean length of a literal's code in bits, with
/// which the search for repetitions judges the next block. Throws std::bad_alloc.
double writeDeflateBlock(BitWriter& writer, std::span<const uint8_t> bytes,
                         std::span<const DeflateSequence> sequences, bool isFinal);

}  // namespace vorla
