#include "tests/NEX/NEX+PAK/SerializationPAK/Buoy.h"

namespace vorla::test {
namespace {

const PakClass& kNumber = PakClass::numberClass();
const PakClass& kString = PakClass::stringClass();
using CompactIn = analyticspak::PakInputStream;
using CompactOut = analyticspak::PakOutputStream;

TEST(PakOutputStreamDeathTest, AFailedCheckEndsTheProcess) {
    EXPECT_DEATH(PakOutputStream().writeString(PakValue(), 1, true), "required == NO");
}

TEST(PakInputStream, LooksOnlyUnderTheCursor) {
    PakInputStream stream(bytesOf("10 07 36 01 78"));
    EXPECT_EQ(stream.headType(), PAK_TYPE_NONE);
    EXPECT_EQ(stream.readString(3, false), std::nullopt);
    EXPECT_EQ(stream.cursor(), 0);
    EXPECT_EQ(stream.readInt(1), 7);
    EXPECT_EQ(stream.readString(3, true), "x");
    // Behind the end the last head stays, and nothing is there even for its tag.
    EXPECT_FALSE(stream.peakHead());
    EXPECT_EQ(stream.readString(3, false), std::nullopt);
    EXPECT_EQ(outcomeOf([&] { stream.readBytes(UINT32_MAX); }), "_cursor + length <= _streamSize");
    stream.skip(1000);
    EXPECT_EQ(stream.cursor(), 5);
}

TEST(PakInputStream, FailsWithTheTextOfTheCheck) {
    const auto number = [](PakInputStream& in) { in.readNumber(0, true); };
    const auto integer = [](PakInputStream& in) { in.readInt(0); };
    const auto string = [](PakInputStream& in) { (void)in.readString(0, true); };
    const auto data = [](PakInputStream& in) { (void)in.readData(0, true); };
    const auto object = [](PakInputStream& in) { in.readObject(0, true, HandWritten::pakClass()); };
    const auto list = [](PakInputStream& in) { (void)in.readArray(0, true, kNumber); };
    const auto map = [](PakInputStream& in) {
        (void)in.readDictionary(0, true, mapOf(kString, kNumber));
    };
    const struct {
        const char* bytes;
        std::function<void(PakInputStream&)> read;
        const char* outcome;
    } rows[] = {
        {"", number, "required == NO"},
        {"F1", number, "required == NO"},
        {"0E", number, "0"},
        {"1C", integer, "_headTag == tag"},
        {"04 00 00 00 00", integer, "0"},
        {"04 00 00 00 00", [](PakInputStream& in) { in.readDouble(0); },
         "_headType == PAK_TYPE_DOUBLE"},
        {"06 02 61", string, "_cursor + length <= _streamSize"},
        {"07 FF FF FF FF 61", string, "_cursor + length <= _streamSize"},
        {"1C", data, "raised: "},
        {"0D 01 0C", data, "raised: "},
        {"0D 00 02 7F FF FF FF AA", data, "_cursor + length <= _streamSize"},
        {"0C", object, "_headType == PAK_TYPE_STRUCT_S"},
        {"0A 00 07", object, "_headType == PAK_TYPE_STRUCT_E"},
        {"0A 00 07 1F", object, "0"},
        {"0A 00 07 1D 01 0C 0B", object, "_headType == PAK_TYPE_INT1 && _headTag == 0"},
        {"0A 0B", object, "done"},
        {"0C", list, "_headType == PAK_TYPE_LIST"},
        {"09 02 7F FF FF FF 0C 0C", list, "required == NO"},
        {"09 00 FF 0C", list, "done"},
        {"0C", map, "_headType == PAK_TYPE_MAP"},
        {"08 02 7F FF FF FF 06 01 61 1C", map, "required == NO"},
        {"0C", [](PakInputStream& in) { in.readAnything(0, true, {}); }, "0"},
    };
    for (const auto& row : rows) {
        PakInputStream stream(bytesOf(row.bytes));
        EXPECT_EQ(outcomeOf([&] { row.read(stream); }), row.outcome) << row.bytes;
    }
}

TEST(PakInputStream, ContainersLeaveOutWhatIsAbsent) {
    // The second string is no UTF-8 and so comes back absent; the later of two equal keys stays.
    PakInputStream list(bytesOf("09 00 03 06 01 61 06 01 FF 06 01 62"));
    EXPECT_EQ(list.readArray(0, true, kString), (PakArray{"a", "b"}));
    PakInputStream map(bytesOf("08 00 03 06 01 61 10 01 06 01 FF 10 02 06 01 61 10 04"));
    EXPECT_EQ(map.readDictionary(0, true, mapOf(kString, kNumber)), (PakDictionary{{"a", 4}}));
}

TEST(PakInputStream, ForgivingDecoderKeepsItsOwnReading) {
    const struct {
        const char* bytes;
        std::optional<std::u16string> units;
    } rows[] = {
        {"", std::nullopt},
        {"41 C3 A9 E4 B8 AD", u"A\u00E9\u4E2D"},
        {"C3", u""},
        {"DF BF", u"\u07FF"},
        {"E4 B8", u""},
        // One unit from a four-byte sequence, not a pair.
        {"F0 9F 98 80", std::u16string(1, char16_t(0xF600))},
        {"FF FF 81 82 83", std::u16string(1, char16_t(0x1083))},
        {"C0 80 41", u"A"},
    };
    for (const auto& row : rows) {
        const PakData bytes = bytesOf(row.bytes);
        EXPECT_EQ(PakInputStream::utf8Decode(bytes.data(), static_cast<int32_t>(bytes.size())),
                  row.units)
            << row.bytes;
    }
    // A well-formed string, one that is none, an absent field: the bytes before it once more.
    PakInputStream stream(bytesOf("06 02 C3 A9 16 05 61 E4 B8 62 63 3C"));
    EXPECT_EQ(stream.readUTF8String(0, true), "\u00E9");
    EXPECT_EQ(stream.readUTF8String(1, true), "a\u4E22c");
    EXPECT_EQ(stream.readUTF8String(2, false), "a\u4E22c");
}

TEST(PakInputStream, RefusesWhatIsNoUtf8) {
    for (const char* bytes : {"80", "C1 81", "E0 80 80", "ED A0 80", "F5 80 80 80", "F4 90 80 80",
                              "E4 B8", "41 41 41 41 41 41 41 C3"}) {
        const PakData text = bytesOf(bytes);
        PakInputStream stream(PakData{0x06, static_cast<uint8_t>(text.size())} + text);
        EXPECT_EQ(stream.readString(0, true), std::nullopt) << bytes;
    }
}

struct Empty {
    void writeTo(CompactOut&) const {}
    void readFrom(CompactIn&) {}
};

template <typename T>
std::string outcomeOfRead(const char* bytes, uint8_t tag = 0) {
    const PakData kept = bytesOf(bytes);
    return outcomeOf([&] {
        T value{};
        CompactIn(kept).read(value, tag);
    });
}

TEST(PakCompactInput, SaysWhatIsWrong) {
    using Map = std::map<std::string, std::string>;
    const struct {
        std::string outcome;
        const char* expected;
    } rows[] = {
        {outcomeOfRead<int32_t>("0B 1C", 1), "require field not exist, tag: 1"},
        {outcomeOfRead<char>("1C"), "require field not exist, tag: 0."},
        {outcomeOfRead<char>("01 00 07"), "read 'Char' type mismatch, tag: 0, get type: 1."},
        {outcomeOfRead<int16_t>("02 00 00 00 07"),
         "read 'Short' type mismatch, tag: 0, get type: 2."},
        {outcomeOfRead<int32_t>("06 00"), "read 'Int32' type mismatch, tag: 0, get type: 6."},
        {outcomeOfRead<int64_t>("04 00 00 00 00"),
         "read 'Int64' type mismatch, tag: 0, get type: 4."},
        {outcomeOfRead<uint32_t>("00 FF"), "invalid 'UInt32', tag: 0"},
        {outcomeOfRead<uint32_t>("03 00 00 00 01 00 00 00 00"), "invalid 'UInt32', tag: 0"},
        {outcomeOfRead<int32_t>("02 00 00 01"), "buffer overflow when peekBuf, over 4."},
        {outcomeOfRead<std::string>("0C"), "read 'string' type mismatch, tag: 0, get type: 12."},
        {outcomeOfRead<std::string>("07 06 40 00 00 61"), "buffer overflow when peekBuf, over 6."},
        {outcomeOfRead<std::string>("07 06 40 00 01 61"),
         "invalid string size, tag: 0, size: 104857601"},
        {outcomeOfRead<PakData>("0C"), "type mismatch, tag: 0, type: 12"},
        {outcomeOfRead<PakData>("0D 01 0C"), "type mismatch, tag: 0, type: 13, 1"},
        {outcomeOfRead<PakData>("0D 00 00 FF"), "invalid size, tag: 0, type: 13, 0, size: -1"},
        {outcomeOfRead<PakData>("09 00 FF"), "invalid size, tag: 0, type: 9, size: -1"},
        {outcomeOfRead<Map>("0C"), "read 'map' type mismatch, tag: 0, get type: 12."},
        {outcomeOfRead<Map>("08 00 FF"), "invalid map, tag: 0, size: -1"},
        {outcomeOfRead<Empty>("0C"), "read 'struct' type mismatch, tag: 0, get type: 12."},
        {outcomeOfRead<Empty>("0A 1E 0B"), "skipField with invalid type, type value:14."},
        {outcomeOfRead<Empty>("0A 1D 01 0C 0B"), "skipField with invalid type, type value: 13, 1."},
        {outcomeOfRead<Empty>("0A 16 09 0B"), "buffer overflow when skip, over 4."},
        {outcomeOfRead<Empty>("0A F1"), "buffer overflow when peekBuf with offset, over 2."},
    };
    for (const auto& row : rows) EXPECT_EQ(row.outcome, std::string("raised: ") + row.expected);
}

TEST(PakCompactInput, BooleansAndUnsignedNumbersComeBack) {
    CompactOut out;
    out.write(true, 0);
    out.write(UINT32_MAX, 1);
    out.write(uint32_t{7}, 2);
    out.write(std::vector<bool>{true, false}, 3);
    CompactIn in(out.bytes());
    bool yes = false;
    uint32_t most = 0, seven = 0;
    std::vector<bool> list;
    in.read(yes, 0);
    in.read(most, 1);
    in.read(seven, 2);
    in.read(list, 3);
    EXPECT_TRUE(yes && most == UINT32_MAX && seven == 7);
    EXPECT_EQ(list, (std::vector<bool>{true, false}));
}

TEST(PakCompactInput, SeeksForwardOnly) {
    // One field of each kind to be passed over before tag 5.
    for (const char* field : {"3C", "31 01 01", "33 01 01 01 01 01 01 01 01", "34 01 01 01 01",
                              "35 01 01 01 01 01 01 01 01", "36 01 61", "37 00 00 00 01 61",
                              "38 00 01 06 01 61 19 00 01 06 00", "39 00 02 0A 0B 0C", "39 00 FF",
                              "39 00 01 0B", "3A 18 0C 2A 5C 0B 0B", "3D 00 00 02 5C 5C"}) {
        const PakData bytes = bytesOf(field) + bytesOf("50 09");
        CompactIn stream(bytes);
        int32_t value = 0;
        stream.read(value, 5);
        EXPECT_EQ(value, 9) << field;
        // Cut anywhere, the field behind reads as absent, and the reason is reported.
        for (size_t length = 1; length < bytes.size() - 2; ++length) {
            testing::internal::CaptureStdout();
            EXPECT_FALSE(CompactIn(bytes.data(), length).skipToTag(5)) << field;
            EXPECT_THAT(testing::internal::GetCapturedStdout(),
                        testing::HasSubstr("WARN: skipToTag '5' occur a PakDecodeException["));
        }
    }
    int32_t kept = 77;
    const PakData descending = bytesOf("50 09 40 01");
    CompactIn behind(descending);
    behind.read(kept, 4, false);
    EXPECT_EQ(kept, 77);
}

TEST(PakCompactInput, StringsAreLimitedOnBothSides) {
    std::string text(104857600, 'x');
    CompactOut stream;
    stream.write(text, 0);
    text.clear();
    CompactIn(stream.bytes()).read(text, 0);
    EXPECT_EQ(text.size(), 104857600U);
    text += 'x';
    EXPECT_EQ(outcomeOf([&] { stream.write(text, 3); }),
              "raised: invalid string size, tag: 3, size: 104857601");
}

}  // namespace
}  // namespace vorla::test
