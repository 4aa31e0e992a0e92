#include "imaging/png/DeflateBlock.h"

#include <algorithm>
#include <array>
#include <bit>

#include "imaging/png/HuffmanCode.h"

namespace vorla {
namespace {

constexpr size_t kEndOfBlock = 256;
constexpr size_t kLiteralSymbols = 286;
constexpr size_t kDistanceSymbols = 30;
constexpr size_t kLengthSymbols = 19;
constexpr int kLiteralLimit = 14;  // four literals then fit into one flush of the bit writer
constexpr int kDistanceLimit = 15;
constexpr int kLengthLimit = 7;
constexpr size_t kStoredMaximum = 65535;

struct LengthSlot {
    uint16_t symbol;
    uint8_t extraBits;
    uint8_t base;
};

// Slots of RFC 1951, section 3.2.5, in closed form: after the first slots, four (lengths) or two
// (distances) slots share each number of extra bits.
constexpr std::array<LengthSlot, 259> makeLengthSlots() {
    std::array<LengthSlot, 259> slots = {};
    for (unsigned length = 3; length < 258; ++length) {
        const unsigned offset = length - 3;
        const unsigned extra = offset < 8 ? 0 : static_cast<unsigned>(std::bit_width(offset)) - 3;
        const unsigned slot = extra * 4 + (offset >> extra);
        const unsigned base = offset >> extra << extra;
        slots[length] = {static_cast<uint16_t>(257 + slot), static_cast<uint8_t>(extra),
                         static_cast<uint8_t>(base)};
    }
    slots[258] = {285, 0, 255};
    return slots;
}
constexpr auto kLengthSlots = makeLengthSlots();

unsigned distanceExtraBits(unsigned offset) {
    return offset < 4 ? 0 : static_cast<unsigned>(std::bit_width(offset)) - 2;
}
struct Counts {
    std::array<uint32_t, HuffmanCode::kSymbols> literals = {};
    std::array<uint32_t, kDistanceSymbols> distances = {};
    uint64_t extraBits = 0;
};

// Four tables, since counting one symbol twice in a row in the same table stalls the processor.
void countBytes(const uint8_t* bytes, size_t size, uint32_t (*tables)[256]) {
    size_t i = 0;
    for (; i + 4 <= size; i += 4)
        for (size_t lane = 0; lane < 4; ++lane) ++tables[lane][bytes[i + lane]];
    for (; i < size; ++i) ++tables[0][bytes[i]];
}

Counts countSymbols(std::span<const uint8_t> bytes, std::span<const DeflateSequence> sequences) {
    Counts counts;
    uint32_t tables[4][256] = {};
    const uint8_t* at = bytes.data();
    for (const DeflateSequence& sequence : sequences) {
        countBytes(at, sequence.literals, tables);
        at += sequence.literals + sequence.length;
        if (sequence.length == 0) continue;
        const LengthSlot& slot = kLengthSlots[sequence.length];
        const unsigned offset = sequence.distance - 1U;
        ++counts.literals[slot.symbol];
        ++counts.distances[deflateDistanceSlot(sequence.distance)];
        counts.extraBits += slot.extraBits + distanceExtraBits(offset);
    }
    for (size_t value = 0; value < 256; ++value)
        for (const auto& table : tables) counts.literals[value] += table[value];
    counts.literals[kEndOfBlock] = 1;
    return counts;
}

// The code lengths of both alphabets, run-length coded (RFC 1951, section 3.2.7).
struct Header {
    struct Item {
        uint8_t symbol;
        uint8_t extra;
    };
    std::vector<Item> items;
    size_t literalCount = 0;
    size_t distanceCount = 0;
    size_t orderCount = 0;
    HuffmanCode code;
};

constexpr std::array<uint8_t, kLengthSymbols> kLengthOrder = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                              11, 4,  12, 3, 13, 2, 14, 1, 15};
unsigned headerExtraBits(unsigned symbol) {
    return symbol == 16 ? 2 : symbol == 17 ? 3 : symbol == 18 ? 7 : 0;
}

size_t usedCount(const HuffmanCode& code, size_t symbols, size_t minimum) {
    while (symbols > minimum && code.lengths[symbols - 1] == 0) --symbols;
    return symbols;
}

std::vector<Header::Item> packedLengths(std::span<const uint8_t> lengths) {
    std::vector<Header::Item> items;
    for (size_t i = 0; i < lengths.size();) {
        const uint8_t length = lengths[i];
        size_t run = 1;
        while (i + run < lengths.size() && lengths[i + run] == length) ++run;
        i += run;
        if (length != 0) {
            items.push_back({length, 0});
            --run;
        }
        const size_t longest = length == 0 ? 138 : 6;
        while (run >= 3) {
            const size_t piece = std::min(run, longest);
            const unsigned symbol = length != 0 ? 16 : piece <= 10 ? 17 : 18;
            const size_t shortest = symbol == 18 ? 11 : 3;
            items.push_back({static_cast<uint8_t>(symbol), static_cast<uint8_t>(piece - shortest)});
            run -= piece;
        }
        while (run-- > 0) items.push_back({length, 0});
    }
    return items;
}

Header makeHeader(const HuffmanCode& literals, const HuffmanCode& distances) {
    Header header;
    header.literalCount = usedCount(literals, kLiteralSymbols, 257);
    header.distanceCount = usedCount(distances, kDistanceSymbols, 1);
    std::vector<uint8_t> lengths(literals.lengths.begin(),
                                 literals.lengths.begin() + header.literalCount);
    lengths.insert(lengths.end(), distances.lengths.begin(),
                   distances.lengths.begin() + header.distanceCount);
    header.items = packedLengths(lengths);
    std::array<uint32_t, kLengthSymbols> counts = {};
    for (const Header::Item& item : header.items) ++counts[item.symbol];
    header.code.build(counts, kLengthLimit);
    header.orderCount = kLengthSymbols;
    while (header.orderCount > 4 && header.code.lengths[kLengthOrder[header.orderCount - 1]] == 0)
        --header.orderCount;
    return header;
}

uint64_t headerBits(const Header& header) {
    uint64_t bits = 3 + 5 + 5 + 4 + 3 * header.orderCount;
    for (const Header::Item& item : header.items)
        bits += header.code.lengths[item.symbol] + headerExtraBits(item.symbol);
    return bits;
}

void writeHeader(BitWriter& writer, const Header& header, bool isFinal) {
    writer.add(isFinal ? 1 : 0, 1);
    writer.add(2, 2);
    writer.add(header.literalCount - 257, 5);
    writer.add(header.distanceCount - 1, 5);
    writer.add(header.orderCount - 4, 4);
    writer.flush();
    for (size_t i = 0; i < header.orderCount; ++i) {
        writer.add(header.code.lengths[kLengthOrder[i]], 3);
        writer.flush();
    }
    for (const Header::Item& item : header.items) {
        writer.add(header.code.bits[item.symbol], header.code.lengths[item.symbol]);
        writer.add(item.extra, headerExtraBits(item.symbol));
        writer.flush();
    }
}

// A symbol's bits in the low 24 bits of a word, their number above.
using PackedCode = std::array<uint32_t, HuffmanCode::kSymbols>;

PackedCode packed(const HuffmanCode& code) {
    PackedCode words;
    for (size_t i = 0; i < words.size(); ++i)
        words[i] = static_cast<uint32_t>(code.bits[i]) | static_cast<uint32_t>(code.lengths[i])
                                                             << 24;
    return words;
}

void writeBody(BitWriter& target, const uint8_t* at, std::span<const DeflateSequence> sequences,
               const HuffmanCode& literalCode, const HuffmanCode& distanceCode) {
    const PackedCode literals = packed(literalCode);
    const PackedCode distances = packed(distanceCode);
    BitWriter writer = target;  // a copy that nothing else sees stays in registers
    const auto add = [&writer](uint32_t word) { writer.add(word & 0xffffffU, word >> 24); };
    for (const DeflateSequence& sequence : sequences) {
        const uint8_t* end = at + sequence.literals;
        for (; at + 4 <= end; at += 4) {
            add(literals[at[0]]);
            add(literals[at[1]]);
            add(literals[at[2]]);
            add(literals[at[3]]);
            writer.flush();
        }
        for (; at < end; ++at) add(literals[*at]);
        writer.flush();
        if (sequence.length == 0) continue;
        const LengthSlot& slot = kLengthSlots[sequence.length];
        const unsigned offset = sequence.distance - 1U;
        const unsigned extra = distanceExtraBits(offset);
        add(literals[slot.symbol]);
        writer.add(sequence.length - 3U - slot.base, slot.extraBits);
        add(distances[deflateDistanceSlot(sequence.distance)]);
        writer.add(offset & ((1U << extra) - 1), extra);
        writer.flush();
        at += sequence.length;
    }
    add(literals[kEndOfBlock]);
    writer.flush();
    target.takePositionOf(writer);
}

void writeStored(BitWriter& writer, std::span<const uint8_t> bytes, bool isFinal) {
    do {
        const size_t size = std::min(bytes.size(), kStoredMaximum);
        writer.add(isFinal && size == bytes.size() ? 1 : 0, 1);
        writer.add(0, 2);
        writer.align();
        writer.add(size, 16);
        writer.add(~size & 0xffff, 16);
        writer.flush();
        writer.addBytes(bytes.data(), size);
        bytes = bytes.subspan(size);
    } while (!bytes.empty());
}

DeflateCosts costsOf(const HuffmanCode& literals, const HuffmanCode& distances) {
    constexpr uint8_t kUnusedLiteral = 12, kUnusedLength = 9, kUnusedDistance = 6;
    const auto cost = [](uint8_t bits, uint8_t unused) { return bits != 0 ? bits : unused; };
    DeflateCosts costs = {};
    for (size_t value = 0; value < costs.literals.size(); ++value)
        costs.literals[value] = cost(literals.lengths[value], kUnusedLiteral);
    for (size_t length = 3; length < costs.lengths.size(); ++length) {
        const LengthSlot& slot = kLengthSlots[length];
        costs.lengths[length] = static_cast<uint8_t>(
            cost(literals.lengths[slot.symbol], kUnusedLength) + slot.extraBits);
    }
    for (size_t slot = 0; slot < costs.distances.size(); ++slot)
        costs.distances[slot] = static_cast<uint8_t>(
            cost(distances.lengths[slot], kUnusedDistance) + (slot < 4 ? 0 : slot / 2 - 1));
    return costs;
}

uint64_t bodyBits(const Counts& counts, const HuffmanCode& literals, const HuffmanCode& distances) {
    uint64_t bits = counts.extraBits;
    for (size_t symbol = 0; symbol < kLiteralSymbols; ++symbol)
        bits += uint64_t{counts.literals[symbol]} * literals.lengths[symbol];
    for (size_t symbol = 0; symbol < kDistanceSymbols; ++symbol)
        bits += uint64_t{counts.distances[symbol]} * distances.lengths[symbol];
    return bits;
}

}  // namespace

DeflateCosts writeDeflateBlock(BitWriter& writer, std::span<const uint8_t> bytes,
                               std::span<const DeflateSequence> sequences, bool isFinal) {
    const Counts counts = countSymbols(bytes, sequences);
    HuffmanCode literals;
    HuffmanCode distances;
    literals.build(std::span(counts.literals).first(kLiteralSymbols), kLiteralLimit);
    distances.build(counts.distances, kDistanceLimit);
    const Header header = makeHeader(literals, distances);
    const uint64_t bits = headerBits(header) + bodyBits(counts, literals, distances);
    const uint64_t storedBits = (bytes.size() + 5 * (bytes.size() / kStoredMaximum + 1)) * 8 + 16;
    writer.begin(std::min(bits, storedBits));
    if (storedBits <= bits) {
        writeStored(writer, bytes, isFinal);
    } else {
        writeHeader(writer, header, isFinal);
        writeBody(writer, bytes.data(), sequences, literals, distances);
    }
    writer.end();
    return costsOf(literals, distances);
}

}  // namespace vorla
