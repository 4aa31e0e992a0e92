#include "imaging/png/DeflateCoder.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <functional>
#include <random>
#include <string>

#include "imaging/png/HuffmanCode.h"

namespace vorla {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes inflated(const Bytes& code, size_t expected) {
    Bytes out(expected + 1);
    z_stream stream = {};
    EXPECT_EQ(inflateInit2(&stream, -15), Z_OK);
    stream.next_in = const_cast<uint8_t*>(code.data());
    stream.avail_in = static_cast<uInt>(code.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(inflate(&stream, Z_FINISH), Z_STREAM_END) << (stream.msg ? stream.msg : "");
    EXPECT_EQ(stream.avail_in, 0U) << "bytes behind the end of the stream";
    out.resize(stream.total_out);
    inflateEnd(&stream);
    return out;
}

Bytes codedInStripes(const Bytes& data, size_t stripe, DeflateCoder::Effort effort) {
    Bytes padded = data;
    padded.resize(data.size() + DeflateCoder::kPadding);
    DeflateCoder coder;
    Bytes code;
    size_t start = 0;
    do {
        const size_t end = std::min(data.size(), start + stripe);
        const size_t history = std::min(start, DeflateCoder::kHistory);
        coder.code({padded.data() + start - history, history + end - start}, history, effort,
                   end == data.size(), code);
        start = end;
    } while (start < data.size());
    return code;
}

Bytes generated(size_t size, const std::function<uint8_t(size_t, std::mt19937&)>& byte) {
    std::mt19937 random(11);
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) bytes[i] = byte(i, random);
    return bytes;
}

struct Case {
    const char* name;
    Bytes data;
    size_t largest;  // that its code may be
};

std::vector<Case> cases() {
    const auto noise = [](size_t, std::mt19937& random) { return static_cast<uint8_t>(random()); };
    return {
        {"nothing", {}, 16},
        {"one byte", {7}, 16},
        {"three bytes", {1, 2, 3}, 16},
        {"zeroes", Bytes(300'000, 0), 600},
        {"noise, stored beyond one stored block", generated(200'000, noise), 200'100},
        {"skewed bytes that need long codes",
         generated(400'000,
                   [](size_t, std::mt19937& random) {
                       const unsigned bits = static_cast<unsigned>(random());
                       return static_cast<uint8_t>(bits == 0 ? 32 : __builtin_ctz(bits));
                   }),
         135'000},
        {"repeats at the farthest distance",
         [&] {
             Bytes bytes = generated(DeflateCoder::kHistory, noise);
             const Bytes once = bytes;
             for (int i = 0; i < 3; ++i) bytes.insert(bytes.end(), once.begin(), once.end());
             return bytes;
         }(),
         DeflateCoder::kHistory + 3000},
        {"repeats just beyond it",
         [&] {
             Bytes bytes = generated(DeflateCoder::kHistory + 1, noise);
             const Bytes once = bytes;
             for (int i = 0; i < 3; ++i) bytes.insert(bytes.end(), once.begin(), once.end());
             return bytes;
         }(),
         4 * DeflateCoder::kHistory + 100},
        {"runs of every length",
         [] {
             Bytes bytes;
             for (size_t run = 1; run < 600; ++run)
                 bytes.insert(bytes.end(), run, static_cast<uint8_t>(run * 37));
             return bytes;
         }(),
         9000},
        {"words",
         generated(250'000,
                   [](size_t i, std::mt19937& random) {
                       static const std::string text = "the window captures light ";
                       return random() % 50 == 0 ? static_cast<uint8_t>(random() % 4)
                                                 : static_cast<uint8_t>(text[i % text.size()]);
                   }),
         31'000},
    };
}

TEST(DeflateCoder, inflatesToTheSameBytes) {
    const DeflateCoder::Effort efforts[] = {
        {4, 1, 4, 1}, {7, 3, 64, 32}, {8, 1, 258, 8}, {5, 64, 258, 1000}};
    for (const Case& row : cases())
        for (const size_t stripe : {size_t{1000}, size_t{65536}, size_t{1} << 20})
            for (const DeflateCoder::Effort& effort : efforts) {
                if (stripe == 1000 && row.data.size() > 250'000) continue;
                const Bytes code = codedInStripes(row.data, stripe, effort);
                EXPECT_TRUE(inflated(code, row.data.size()) == row.data)
                    << row.name << ", stripe " << stripe << ", effort " << effort.shortest;
            }
}

TEST(DeflateCoder, findsWhatIsThereAndNeverGrowsMuch) {
    for (const Case& row : cases()) {
        const Bytes code = codedInStripes(row.data, size_t{1} << 20, {4, 8, 64, 64});
        EXPECT_LE(code.size(), row.largest) << row.name;
    }
}

TEST(HuffmanCode, keepsToTheLimitAndFillsTheCode) {
    for (const int limit : {7, 9, 14, 15})
        for (const size_t symbols : {size_t{2}, size_t{19}, size_t{60}, size_t{120}}) {
            std::vector<uint32_t> counts(symbols);
            uint32_t a = 1, b = 1;  // counts like this make the deepest of trees
            for (uint32_t& count : counts) {
                count = a;
                const uint32_t sum = std::min(a + b, 1U << 28);
                a = b;
                b = sum;
            }
            HuffmanCode code;
            code.build(counts, limit);
            double kraft = 0;
            for (const uint8_t length : code.lengths) {
                EXPECT_LE(length, limit);
                if (length) kraft += 1.0 / static_cast<double>(1 << length);
            }
            EXPECT_EQ(kraft, 1.0) << limit << ' ' << symbols;
        }
}

}  // namespace
}  // namespace vorla
