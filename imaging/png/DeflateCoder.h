#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "imaging/png/BitWriter.h"
#include "imaging/png/DeflateBlock.h"

namespace vorla {

/// Compresses stripes of one deflate stream (RFC 1951) independently of each other, so that several
/// threads can work on the same picture: each stripe may repeat bytes of the 32 KiB before it, and
/// all but the last end on a byte boundary (an empty stored block), so that stripes are simply
/// joined. Made for filtered picture rows: long runs cost next to nothing, and stretches without
/// repetitions (photographs) are passed at the speed of entropy coding alone.
///
/// One object serves one thread and may be used again for the next stripe.
class DeflateCoder {
 public:
    static constexpr size_t kHistory = 32768;
    /// Bytes that must be readable behind the end of the input.
    static constexpr size_t kPadding = 8;

    /// How hard to look for repetitions.
    struct Effort {
        int shortest;       ///< repetitions below this length, 4 to 8, are not looked for
        int candidates;     ///< earlier places tried at each position
        int goodLength;     ///< a repetition this long is taken at once
        int missesPerStep;  ///< after so many misses in a row the search takes larger steps
    };

    DeflateCoder();

    /// Appends the code of `window` without its first `history` bytes, which were coded before and
    /// only serve as source of repetitions. Throws std::bad_alloc.
    void code(std::span<const uint8_t> window, size_t history, Effort effort, bool isFinal,
              std::vector<uint8_t>& out);

 private:
    struct Match {
        int length = 0;
        int distance = 0;
    };
    static constexpr int kHashBits = 15;
    static constexpr size_t kMaximumSequences = 8192;
    static constexpr size_t kMaximumSymbols = 32768;
    static constexpr int kJudgedLengths = 10;

    void start(std::span<const uint8_t> window, size_t history);
    [[nodiscard]] size_t hashAt(int position) const;
    void insertUpTo(int position);
    Match find(int position, int longerThan, const Effort& effort);
    void skipLong(int end);
    [[nodiscard]] bool pays(int position, const Match& match) const;
    void finishBlock(BitWriter& writer, int from, int end, bool isFinal);

    std::vector<int32_t> heads_;     // last position of each hash
    std::vector<int32_t> previous_;  // the position before it, by position modulo kHistory
    std::vector<DeflateSequence> sequences_;
    DeflateCosts costs_ = {};  // of the block before
    const uint8_t* data_ = nullptr;
    int size_ = 0;
    int shortest_ = 4;
    int inserted_ = 0;  // positions below are in the table
};

}  // namespace vorla
