#include "tests/NEX/NEX+PAK/SerializationPAK/Buoy.h"

namespace vorla::test {
namespace {

const PakClass& kNumber = PakClass::numberClass();
const PakClass& kString = PakClass::stringClass();
const PakClass& kData = PakClass::dataClass();

struct GoldenRow {
    const char* name;
    PakValue value;
    int32_t tag;
    PakData bytes;
    PakDescription description;
};

std::vector<GoldenRow> integerRows() {
    struct {
        int64_t value;
        const char* bytes;
    } const rows[] = {
        {0, "1C"},
        {1, "10 01"},
        {-1, "10 FF"},
        {127, "10 7F"},
        {-128, "10 80"},
        {128, "11 00 80"},
        {-129, "11 FF 7F"},
        {300, "11 01 2C"},
        {32767, "11 7F FF"},
        {-32768, "11 80 00"},
        {32768, "12 00 00 80 00"},
        {-32769, "12 FF FF 7F FF"},
        {2147483647, "12 7F FF FF FF"},
        {-2147483648LL, "12 80 00 00 00"},
        {2147483648LL, "13 00 00 00 00 80 00 00 00"},
        {-2147483649LL, "13 FF FF FF FF 7F FF FF FF"},
        {INT64_MAX, "13 7F FF FF FF FF FF FF FF"},
        {INT64_MIN, "13 80 00 00 00 00 00 00 00"},
    };
    std::vector<GoldenRow> golden;
    for (const auto& row : rows)
        golden.push_back({"integer", row.value, 1, bytesOf(row.bytes), kNumber});
    return golden;
}

std::vector<GoldenRow> goldenRows() {
    const PakDescription numberList = listOf(kNumber), numberMap = mapOf(kString, kNumber);
    const PakData x255 = repeated("78", 255), x256 = repeated("78", 256);
    std::vector<GoldenRow> rows = {
        {"zero at tag 3", 0, 3, bytesOf("3C"), kNumber},
        {"five at tag 20", 5, 20, bytesOf("F0 14 05"), kNumber},
        {"tag 15, two bytes of head", 5, 15, bytesOf("F0 0F 05"), kNumber},
        {"tag 255", 0, 255, bytesOf("FC FF"), kNumber},
        {"float", 1.5F, 1, bytesOf("14 3F C0 00 00"), kNumber},
        {"double", -2.25, 20, bytesOf("F5 14 C0 02 00 00 00 00 00 00"), kNumber},
        {"string", "ab", 0, bytesOf("06 02 61 62"), kString},
        {"empty string", "", 0, bytesOf("06 00"), kString},
        {"string of 255 bytes", std::string(255, 'x'), 0, bytesOf("06 FF") + x255, kString},
        {"string of 256 bytes", std::string(256, 'x'), 0, bytesOf("07 00 00 01 00") + x256,
         kString},
        {"map", PakDictionary{{"a", 1}}, 2, bytesOf("28 00 01 06 01 61 10 01"), numberMap},
        {"empty map", PakDictionary{}, 2, bytesOf("28 0C"), numberMap},
        {"list", PakArray{1, 0, -300}, 15, bytesOf("F9 0F 00 03 00 01 0C 01 FE D4"), numberList},
        {"bytes", bytesOf("AA BB"), 4, bytesOf("4D 00 00 02 AA BB"), kData},
        {"200 bytes", repeated("11", 200), 4, bytesOf("4D 00 01 00 C8") + repeated("11", 200),
         kData},
        {"list of maps", PakArray{PakDictionary{}, PakDictionary{{"b", 0}}}, 0,
         bytesOf("09 00 02 08 0C 08 00 01 06 01 62 1C"), listOf(numberMap)},
    };
    for (auto& row : integerRows()) rows.push_back(std::move(row));
    // 128 characters, yet 256 bytes.
    const PakData twoBytes = repeated("C3 A9", 128);
    rows.push_back({"two-byte characters", std::string(twoBytes.begin(), twoBytes.end()), 0,
                    bytesOf("07 00 00 01 00") + twoBytes, kString});
    return rows;
}

TEST(PakGolden, RowsAreWrittenAndRead) {
    for (const auto& [name, value, tag, bytes, description] : goldenRows()) {
        SCOPED_TRACE(name);
        PakOutputStream out(1);
        out.writeAnything(value, tag, true);
        EXPECT_EQ(hexOf(out.written()), hexOf(bytes));
        PakInputStream in(bytes);
        EXPECT_EQ(in.readAnything(tag, true, description), value);
        EXPECT_EQ(in.cursor(), in.streamSize());
        // Among the unknown fields of a structure, with a sibling behind it.
        PakInputStream behind(bytesOf("5A 00 07") + bytes + bytesOf("0B 60 2A"));
        EXPECT_NE(behind.readObject(5, true, HandWritten::pakClass()), nullptr);
        EXPECT_EQ(behind.readInt(6), 42);
        for (size_t length = 0; length < bytes.size(); ++length) {
            // On the heap and of exactly that length, so that a stray read is seen.
            PakInputStream cut(PakData(bytes.begin(), bytes.begin() + static_cast<long>(length)));
            EXPECT_NE(outcomeOf([&] {
                          if (!cut.readAnything(tag, false, description)) throw PakFailed{"absent"};
                      }),
                      "done")
                << length;
        }
    }
}

TEST(PakGolden, TheCompactCodecHasTheSameIntegers) {
    for (const GoldenRow& row : integerRows()) {
        analyticspak::PakOutputStream out;
        out.write(row.value.int64Value(), 1);
        EXPECT_EQ(hexOf(out.bytes()), hexOf(row.bytes));
        // At the end of the bytes and before it numbers are read in two ways.
        for (const PakData& bytes : {row.bytes, row.bytes + PakData(8, 0xEE)}) {
            int64_t read = 0;
            analyticspak::PakInputStream(bytes).read(read, 1);
            EXPECT_EQ(read, row.value.int64Value());
        }
    }
}

}  // namespace
}  // namespace vorla::test
