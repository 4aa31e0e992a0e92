#include "imaging/png/HuffmanCode.h"

#include <algorithm>

namespace vorla {
namespace {

constexpr int kDepthLimit = 15;

struct Leaf {
    uint32_t count;
    uint16_t symbol;
};

using Leaves = std::array<Leaf, HuffmanCode::kSymbols>;
using LengthCounts = std::array<int, kDepthLimit + 1>;

size_t sortedLeaves(std::span<const uint32_t> counts, Leaves& leaves) {
    size_t used = 0;
    for (size_t symbol = 0; symbol < counts.size(); ++symbol)
        if (counts[symbol] != 0) leaves[used++] = {counts[symbol], static_cast<uint16_t>(symbol)};
    for (uint16_t symbol = 0; used < 2; ++symbol)
        if (counts[symbol] == 0) leaves[used++] = {1, symbol};
    std::sort(leaves.begin(), leaves.begin() + static_cast<ptrdiff_t>(used),
              [](const Leaf& a, const Leaf& b) {
                  return a.count != b.count ? a.count < b.count : a.symbol < b.symbol;
              });
    return used;
}

// Huffman's algorithm with two queues: the sorted leaves, and the inner nodes, which come into
// being in the order of their weights. Gives how many leaves have each depth, those beyond the
// limit counted at the limit.
LengthCounts depthCounts(const Leaves& leaves, size_t used, int limit) {
    std::array<uint64_t, HuffmanCode::kSymbols> weight = {};
    std::array<uint16_t, 2 * HuffmanCode::kSymbols> parent = {};
    size_t leaf = 0, inner = 0;
    for (size_t made = 0; made + 1 < used; ++made) {
        uint64_t sum = 0;
        for (int child = 0; child < 2; ++child) {
            const bool takesLeaf =
                leaf < used && (inner >= made || leaves[leaf].count <= weight[inner]);
            parent[takesLeaf ? leaf : used + inner] = static_cast<uint16_t>(made);
            sum += takesLeaf ? leaves[leaf++].count : weight[inner++];
        }
        weight[made] = sum;
    }
    LengthCounts counts = {};
    std::array<uint16_t, HuffmanCode::kSymbols> depth = {};
    for (size_t node = used - 2; node-- > 0;)
        depth[node] = static_cast<uint16_t>(depth[parent[used + node]] + 1);
    for (size_t i = 0; i < used; ++i) ++counts[std::min<size_t>(limit, depth[parent[i]] + 1U)];
    return counts;
}

// Lengthens the cheapest shorter codes until the code fits again after the deepest were cut.
void repairKraft(LengthCounts& counts, int limit) {
    int64_t excess = -(int64_t{1} << limit);
    for (int length = 1; length <= limit; ++length)
        excess += static_cast<int64_t>(counts[length]) << (limit - length);
    while (excess > 0) {
        int length = limit - 1;
        while (counts[length] == 0) --length;
        --counts[length];
        counts[length + 1] += 2;
        --counts[limit];
        --excess;
    }
}

}  // namespace

void HuffmanCode::build(std::span<const uint32_t> counts, int maximumLength) {
    Leaves leaves;
    const size_t used = sortedLeaves(counts, leaves);
    LengthCounts atLength = depthCounts(leaves, used, maximumLength);
    repairKraft(atLength, maximumLength);
    lengths.fill(0);
    size_t next = 0;
    for (int length = maximumLength; length > 0; --length)
        for (int i = 0; i < atLength[length]; ++i)
            lengths[leaves[next++].symbol] = static_cast<uint8_t>(length);
    assignBits();
}

void HuffmanCode::assignBits() {
    std::array<uint32_t, kDepthLimit + 2> next = {};
    for (const uint8_t length : lengths)
        if (length != 0) ++next[length + 1];
    for (int length = 1; length <= kDepthLimit; ++length)
        next[length + 1] = (next[length] + next[length + 1]) << 1;
    // next[n + 1] held the count of length n; after the sweep next[n] is the first code of length
    // n.
    for (size_t symbol = 0; symbol < kSymbols; ++symbol) {
        const int length = lengths[symbol];
        if (length == 0) continue;
        uint32_t code = next[length]++;
        uint32_t reversed = 0;
        for (int bit = 0; bit < length; ++bit, code >>= 1) reversed = reversed << 1 | (code & 1);
        bits[symbol] = static_cast<uint16_t>(reversed);
    }
}

}  // namespace vorla
