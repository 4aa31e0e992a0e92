#include "tests/NEX/NEX+PAK/SerializationPAK/PakTestSupport.h"

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

void PrintTo(const GoldenRow& row, std::ostream* out) {
    *out << row.name;
}

PakValue seven() {
    auto object = HandWritten::object();
    object->value = 7;
    return object;
}

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
        {"tag 14, one byte of head", 5, 14, bytesOf("E0 05"), kNumber},
        {"tag 15, two bytes of head", 5, 15, bytesOf("F0 0F 05"), kNumber},
        {"tag 255", 0, 255, bytesOf("FC FF"), kNumber},
        {"float zero keeps its width", 0.0F, 1, bytesOf("14 00 00 00 00"), kNumber},
        {"float", 1.5F, 1, bytesOf("14 3F C0 00 00"), kNumber},
        {"double zero", 0.0, 1, bytesOf("15 00 00 00 00 00 00 00 00"), kNumber},
        {"double", -2.25, 20, bytesOf("F5 14 C0 02 00 00 00 00 00 00"), kNumber},
        {"string", "ab", 0, bytesOf("06 02 61 62"), kString},
        {"empty string", "", 0, bytesOf("06 00"), kString},
        {"string of 255 bytes", std::string(255, 'x'), 0, bytesOf("06 FF") + x255, kString},
        {"string of 256 bytes", std::string(256, 'x'), 0, bytesOf("07 00 00 01 00") + x256,
         kString},
        {"map", PakDictionary{{"a", 1}}, 2, bytesOf("28 00 01 06 01 61 10 01"), numberMap},
        {"empty map", PakDictionary{}, 2, bytesOf("28 0C"), numberMap},
        {"empty list", PakArray{}, 2, bytesOf("29 0C"), numberList},
        {"list", PakArray{1, 0, -300}, 15, bytesOf("F9 0F 00 03 00 01 0C 01 FE D4"), numberList},
        {"bytes", bytesOf("AA BB"), 4, bytesOf("4D 00 00 02 AA BB"), kData},
        {"no bytes", PakData(), 4, bytesOf("4D 00 0C"), kData},
        {"200 bytes", repeated("11", 200), 4, bytesOf("4D 00 01 00 C8") + repeated("11", 200),
         kData},
        {"list of maps", PakArray{PakDictionary{}, PakDictionary{{"b", 0}}}, 0,
         bytesOf("09 00 02 08 0C 08 00 01 06 01 62 1C"), listOf(numberMap)},
    };
    for (auto& row : integerRows()) rows.push_back(std::move(row));
    // 128 characters, yet 256 bytes.
    rows.push_back({"two-byte characters",
                    [] {
                        std::string text;
                        for (int i = 0; i < 128; ++i) text += "\xC3\xA9";
                        return PakValue(text);
                    }(),
                    0, bytesOf("07 00 00 01 00") + repeated("C3 A9", 128), kString});
    return rows;
}

class PakGolden : public testing::TestWithParam<GoldenRow> {};

TEST_P(PakGolden, IsWritten) {
    PakOutputStream stream(1);
    stream.writeAnything(GetParam().value, GetParam().tag, true);
    EXPECT_EQ(hexOf(stream.written()), hexOf(GetParam().bytes));
}

TEST_P(PakGolden, IsRead) {
    PakInputStream stream(GetParam().bytes);
    EXPECT_EQ(stream.readAnything(GetParam().tag, true, GetParam().description), GetParam().value);
    EXPECT_EQ(stream.cursor(), stream.streamSize());
}

TEST_P(PakGolden, IsPassedOverBehindTheKnownFields) {
    // A structure with the row's field behind its own, and a sibling behind the structure.
    PakInputStream stream(bytesOf("5A 00 07") + GetParam().bytes + bytesOf("0B 60 2A"));
    const auto object = stream.readObject(5, true, HandWritten::pakClass());
    EXPECT_EQ(static_cast<const HandWritten&>(*object).value, 7);
    EXPECT_EQ(stream.readInt(6), 42);
}

TEST_P(PakGolden, CutShortIsAbsentOrFails) {
    const auto& [name, value, tag, bytes, description] = GetParam();
    for (size_t length = 0; length < bytes.size(); ++length) {
        // On the heap and of exactly that length, so that a stray read is seen.
        PakInputStream stream(PakData(bytes.begin(), bytes.begin() + static_cast<long>(length)));
        EXPECT_NE(outcomeOf([&] {
                      const PakValue read = stream.readAnything(tag, false, description);
                      if (read.isNothing()) throw PakFailed{"absent"};
                  }),
                  "done")
            << length;
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, PakGolden, testing::ValuesIn(goldenRows()));

TEST(PakGoldenStructure, IsWrittenAndRead) {
    PakOutputStream out;
    out.writeObject(seven(), 5, true);
    EXPECT_EQ(hexOf(out.written()), "5A 00 07 0B");
    PakInputStream in(*out.data());
    const auto object = in.readObject(5, true, HandWritten::pakClass());
    EXPECT_EQ(static_cast<const HandWritten&>(*object).value, 7);
}

}  // namespace
}  // namespace vorla::test
