#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace vorla {

/// A canonical prefix code as a deflate block carries it (RFC 1951, section 3.2.2): for each symbol
/// its length in bits, 0 for an unused symbol, and its bits in the order in which they are sent.
struct HuffmanCode {
    static constexpr size_t kSymbols = 288;

    std::array<uint8_t, kSymbols> lengths = {};
    std::array<uint16_t, kSymbols> bits = {};

    /// The best code of at most `maximumLength` bits for these counts (at most kSymbols of them).
    /// Two symbols at least get a code, since some readers refuse a code with a single one.
    void build(std::span<const uint32_t> counts, int maximumLength);

    /// Fills `bits` from `lengths`, which must satisfy Kraft's inequality.
    void assignBits();
};

}  // namespace vorla
