#include "imaging/png/DeflateCoder.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace vorla {
namespace {

constexpr int kLongest = 258;
constexpr int kInsertedOfLong = 32;  // places of a long repetition that the table remembers
constexpr int kNowhere = std::numeric_limits<int32_t>::min() / 2;

template <typename Word>
Word load(const uint8_t* at) {
    Word word;
    std::memcpy(&word, at, sizeof word);
    return word;
}

int commonLength(const uint8_t* a, const uint8_t* b, int limit) {
    int length = 0;
    while (length < limit) {
        const uint64_t difference = load<uint64_t>(a + length) ^ load<uint64_t>(b + length);
        if (difference != 0) return std::min(limit, length + (std::countr_zero(difference) >> 3));
        length += 8;
    }
    return limit;
}

}  // namespace

DeflateCoder::DeflateCoder() : heads_(size_t{1} << kHashBits), previous_(kHistory) {
    sequences_.reserve(kMaximumSequences);
}

void DeflateCoder::start(std::span<const uint8_t> window, size_t history) {
    std::fill(heads_.begin(), heads_.end(), kNowhere);
    data_ = window.data();
    size_ = static_cast<int>(window.size());
    inserted_ = static_cast<int>(history > kHistory ? history - kHistory : 0);
    sequences_.clear();
    // As good a guess as any until the first block tells.
    costs_.literals.fill(6);
    costs_.lengths.fill(7);
    for (size_t slot = 0; slot < costs_.distances.size(); ++slot)
        costs_.distances[slot] = static_cast<uint8_t>(4 + slot / 2);
}

size_t DeflateCoder::hashAt(int position) const {
    const uint64_t bytes = load<uint64_t>(data_ + position) << (64 - 8 * shortest_);
    return bytes * 0x9e3779b97f4a7c15U >> (64 - kHashBits);
}

void DeflateCoder::insertUpTo(int position) {
    const int end = std::min(position, size_ - shortest_ + 1);
    for (; inserted_ < end; ++inserted_) {
        const size_t hash = hashAt(inserted_);
        previous_[static_cast<size_t>(inserted_) % kHistory] = heads_[hash];
        heads_[hash] = inserted_;
    }
    inserted_ = std::max(inserted_, position);
}

DeflateCoder::Match DeflateCoder::find(int position, int longerThan, const Effort& effort) {
    Match best;
    const int limit = std::min(kLongest, size_ - position);
    if (limit < shortest_ || limit <= longerThan) return best;
    insertUpTo(position);
    const uint8_t* here = data_ + position;
    const uint32_t word = load<uint32_t>(here);
    int candidate = heads_[hashAt(position)];
    const int oldest = std::max(0, position - static_cast<int>(kHistory));
    int longest = std::max(longerThan, shortest_ - 1);
    for (int tries = effort.candidates; candidate >= oldest && tries > 0; --tries) {
        const uint8_t* there = data_ + candidate;
        if (load<uint32_t>(there) == word && there[longest] == here[longest]) {
            const int length = commonLength(there, here, limit);
            const Match match = {length, position - candidate};
            if (length > longest && pays(position, match)) {
                best = match;
                longest = length;
                if (length >= effort.goodLength || length == limit) break;
            }
        }
        const int next = previous_[static_cast<size_t>(candidate) % kHistory];
        if (next >= candidate) break;
        candidate = next;
    }
    return best;
}

bool DeflateCoder::pays(int position, const Match& match) const {
    if (match.length >= kJudgedLengths) return true;
    int literals = 0;
    for (int i = 0; i < match.length; ++i) literals += costs_.literals[data_[position + i]];
    const unsigned slot = deflateDistanceSlot(static_cast<unsigned>(match.distance));
    return literals > costs_.lengths[static_cast<size_t>(match.length)] + costs_.distances[slot];
}

void DeflateCoder::finishBlock(BitWriter& writer, int from, int end, bool isFinal) {
    const std::span bytes(data_ + from, static_cast<size_t>(end - from));
    costs_ = writeDeflateBlock(writer, bytes, sequences_, isFinal);
    sequences_.clear();
}

void DeflateCoder::skipLong(int end) {
    inserted_ = std::max(inserted_, end - kInsertedOfLong);
}

void DeflateCoder::code(std::span<const uint8_t> window, size_t history, Effort effort,
                        bool isFinal, std::vector<uint8_t>& out) {
    start(window, history);
    shortest_ = effort.shortest;
    BitWriter writer(out);
    int position = static_cast<int>(history);
    int blockStart = position, literalStart = position, misses = 0;
    size_t symbols = 0;
    while (position < size_) {
        if (sequences_.size() + 1 >= kMaximumSequences ||
            symbols + static_cast<size_t>(position - literalStart) >= kMaximumSymbols) {
            sequences_.push_back({static_cast<uint32_t>(position - literalStart), 0, 0});
            finishBlock(writer, blockStart, position, false);
            blockStart = literalStart = position;
            symbols = 0;
        }
        Match match = find(position, 0, effort);
        if (match.length == 0) {
            position = std::min(size_, position + 1 + misses++ / effort.missesPerStep);
            continue;
        }
        misses = 0;
        while (match.length < effort.goodLength) {
            const Match next = find(position + 1, match.length, effort);
            if (next.length <= match.length) break;
            match = next;
            ++position;
        }
        const auto literals = static_cast<uint32_t>(position - literalStart);
        sequences_.push_back(
            {literals, static_cast<uint16_t>(match.length), static_cast<uint16_t>(match.distance)});
        symbols += literals + 1;
        position += match.length;
        literalStart = position;
        if (match.length > 2 * kInsertedOfLong) skipLong(position);
    }
    sequences_.push_back({static_cast<uint32_t>(position - literalStart), 0, 0});
    finishBlock(writer, blockStart, position, isFinal);
    if (isFinal) {
        writer.begin(8);
        writer.align();
    } else {
        writer.begin(64);
        writer.add(0, 3);
        writer.align();
        writer.add(0xffff0000U, 32);
    }
    writer.end();
}

}  // namespace vorla
