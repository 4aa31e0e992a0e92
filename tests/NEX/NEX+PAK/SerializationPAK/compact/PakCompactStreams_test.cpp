#include "tests/NEX/NEX+PAK/SerializationPAK/compact/Buoy.h"

namespace vorla::test {
namespace {

using analyticspak::BufferReader;
using analyticspak::DataHead;
using InputStream = analyticspak::PakInputStream;
using OutputStream = analyticspak::PakOutputStream;

struct Empty {
    void writeTo(OutputStream&) const {}
    void readFrom(InputStream&) {}
};

template <typename T>
std::string outcomeOfRead(const PakData& bytes, uint8_t tag = 0, bool required = true) {
    return outcomeOf([&] {
        T value{};
        InputStream(bytes).read(value, tag, required);
    });
}

template <typename T>
T valueRead(const PakData& bytes, uint8_t tag = 0) {
    T value{};
    InputStream(bytes).read(value, tag);
    return value;
}

TEST(PakCompactOutput, WritesTheSmallestForm) {
    struct {
        int64_t value;
        const char* bytes;
    } const rows[] = {
        {0, "5C"},
        {-1, "50 FF"},
        {127, "50 7F"},
        {-128, "50 80"},
        {128, "51 00 80"},
        {-129, "51 FF 7F"},
        {32767, "51 7F FF"},
        {-32768, "51 80 00"},
        {32768, "52 00 00 80 00"},
        {-32769, "52 FF FF 7F FF"},
        {INT32_MAX, "52 7F FF FF FF"},
        {INT32_MIN, "52 80 00 00 00"},
        {int64_t{INT32_MAX} + 1, "53 00 00 00 00 80 00 00 00"},
        {int64_t{INT32_MIN} - 1, "53 FF FF FF FF 7F FF FF FF"},
        {INT64_MAX, "53 7F FF FF FF FF FF FF FF"},
        {INT64_MIN, "53 80 00 00 00 00 00 00 00"},
    };
    for (const auto& row : rows) {
        OutputStream stream;
        stream.write(row.value, 5);
        EXPECT_EQ(hexOf(stream.bytes()), row.bytes);
        EXPECT_EQ(valueRead<int64_t>(bytesOf(row.bytes), 5), row.value);
        // With bytes behind it, the other way of reading.
        EXPECT_EQ(valueRead<int64_t>(bytesOf(row.bytes) + PakData(8, 0xEE), 5), row.value);
    }
}

TEST(PakCompactOutput, WritesEachKind) {
    OutputStream stream;
    stream.write(char{-5}, 14);
    stream.write(int16_t{300}, 15);
    stream.write(std::string("ab"), 16);
    stream.write(std::vector<char>{1, 2}, 17);
    stream.write(std::map<std::string, int32_t>{{"a", 1}}, 18);
    stream.write(std::vector<int32_t>{0, 7}, 19);
    stream.write(Empty(), 20);
    stream.write(1.0F, 21);
    EXPECT_EQ(hexOf(stream.bytes()),
              "E0 FB F1 0F 01 2C F6 10 02 61 62 FD 11 00 00 02 01 02 F8 12 00 01 06 01 61 10 01 "
              "F9 13 00 02 0C 00 07 FA 14 0B F4 15 3F 80 00 00");
}

TEST(PakCompactInput, WidensAndRefusesToNarrow) {
    const PakData forms[] = {bytesOf("00 FE"), bytesOf("01 FF FE"), bytesOf("02 FF FF FF FE"),
                             bytesOf("03 FF FF FF FF FF FF FF FE")};
    const auto check = [&](auto zero, size_t widest, const char* name) {
        using T = decltype(zero);
        EXPECT_EQ(valueRead<T>(bytesOf("0C")), 0);
        for (size_t type = 0; type < 4; ++type) {
            if (type <= widest)
                EXPECT_EQ(static_cast<int>(static_cast<int8_t>(valueRead<T>(forms[type]))), -2);
            else
                EXPECT_EQ(outcomeOfRead<T>(forms[type]),
                          "raised: read '" + std::string(name) +
                              "' type mismatch, tag: 0, get type: " + std::to_string(type) + ".");
        }
    };
    check(char{}, 0, "Char");
    check(int16_t{}, 1, "Short");
    check(int32_t{}, 2, "Int32");
    check(int64_t{}, 3, "Int64");
}

TEST(PakCompactInput, SaysWhatIsWrong) {
    using Map = std::map<std::string, std::string>;
    struct {
        std::string outcome;
        const char* expected;
    } const rows[] = {
        {outcomeOfRead<int32_t>(bytesOf("1C"), 0), "require field not exist, tag: 0"},
        {outcomeOfRead<char>(bytesOf("1C"), 0), "require field not exist, tag: 0."},
        {outcomeOfRead<int32_t>(bytesOf("0B 1C"), 1), "require field not exist, tag: 1"},
        {outcomeOfRead<int32_t>(bytesOf("06 00"), 0),
         "read 'Int32' type mismatch, tag: 0, get type: 6."},
        {outcomeOfRead<int32_t>(bytesOf("02 00 00 01"), 0),
         "buffer overflow when peekBuf, over 4."},
        {outcomeOfRead<std::string>(bytesOf("0C")),
         "read 'string' type mismatch, tag: 0, get type: 12."},
        {outcomeOfRead<std::string>(bytesOf("06 02 61")), "buffer overflow when peekBuf, over 3."},
        {outcomeOfRead<std::string>(bytesOf("07 06 40 00 00 61")),
         "buffer overflow when peekBuf, over 6."},
        {outcomeOfRead<std::string>(bytesOf("07 06 40 00 01 61")),
         "invalid string size, tag: 0, size: 104857601"},
        {outcomeOfRead<std::string>(bytesOf("07 FF FF FF FF 61")),
         "invalid string size, tag: 0, size: -1"},
        {outcomeOfRead<PakData>(bytesOf("0C")), "type mismatch, tag: 0, type: 12"},
        {outcomeOfRead<PakData>(bytesOf("0D 01 0C")), "type mismatch, tag: 0, type: 13, 1"},
        {outcomeOfRead<PakData>(bytesOf("0D 00 00 FF")),
         "invalid size, tag: 0, type: 13, 0, size: -1"},
        {outcomeOfRead<PakData>(bytesOf("0D 00 02 7F FF FF FF 00")),
         "buffer overflow when peekBuf, over 8."},
        {outcomeOfRead<PakData>(bytesOf("09 00 FF")), "invalid size, tag: 0, type: 9, size: -1"},
        {outcomeOfRead<Map>(bytesOf("0C")), "read 'map' type mismatch, tag: 0, get type: 12."},
        {outcomeOfRead<Map>(bytesOf("08 00 FF")), "invalid map, tag: 0, size: -1"},
        {outcomeOfRead<Map>(bytesOf("08 00 01 06 01 61")), "require field not exist, tag: 1"},
        {outcomeOfRead<Empty>(bytesOf("0C")), "read 'struct' type mismatch, tag: 0, get type: 12."},
        {outcomeOfRead<Empty>(bytesOf("0A 1E 0B")), "skipField with invalid type, type value:14."},
        {outcomeOfRead<Empty>(bytesOf("0A 1D 01 0C 0B")),
         "skipField with invalid type, type value: 13, 1."},
        {outcomeOfRead<Empty>(bytesOf("0A 16 09 0B")), "buffer overflow when skip, over 4."},
        {outcomeOfRead<Empty>(bytesOf("0A F1")),
         "buffer overflow when peekBuf with offset, over 2."},
        {outcomeOfRead<std::vector<int32_t>>(bytesOf("09 00 FF")),
         "invalid list, tag: 0, size: -1"},
    };
    for (const auto& row : rows) EXPECT_EQ(row.outcome, std::string("raised: ") + row.expected);
}

TEST(PakCompactInput, SeeksForwardOnly) {
    // One field of each kind to be passed over before tag 5.
    const char* const skipped[] = {
        "3C",
        "30 01",
        "31 01 01",
        "32 01 01 01 01",
        "33 01 01 01 01 01 01 01 01",
        "34 01 01 01 01",
        "35 01 01 01 01 01 01 01 01",
        "36 01 61",
        "37 00 00 00 01 61",
        "38 00 01 06 01 61 19 00 01 06 00",
        "39 00 02 0A 0B 0C",
        "39 00 FF",
        "3A 18 0C 2A 5C 0B 0B",
        "3D 00 00 02 5C 5C",
    };
    for (const char* field : skipped) {
        const PakData bytes = bytesOf(field) + bytesOf("50 09");
        InputStream stream(bytes);
        int32_t value = 0;
        stream.read(value, 5);
        EXPECT_EQ(value, 9) << field;
        EXPECT_EQ(stream.reader().left(), 0U) << field;
        // Cut anywhere, the field behind reads as absent, and the reason is told.
        for (size_t length = 1; length < bytesOf(field).size(); ++length) {
            const PakData cut = bytesOf(field);
            testing::internal::CaptureStdout();
            InputStream partly(cut.data(), length);
            EXPECT_FALSE(partly.skipToTag(5)) << field;
            EXPECT_THAT(testing::internal::GetCapturedStdout(),
                        testing::HasSubstr("WARN: skipToTag '5' occur a PakDecodeException["));
        }
    }
    int32_t kept = 77;
    const PakData descending = bytesOf("50 09 40 01");
    InputStream behind(descending);
    behind.read(kept, 4, false);
    EXPECT_EQ(kept, 77);
    behind.read(kept, 5);
    EXPECT_EQ(kept, 9);
}

TEST(PakCompactInput, StructuresEndWhereTheyClose) {
    const PakData structure = bytesOf("1A 18 00 01 06 00 1A 0B 2A 0B 0B 20 05");
    InputStream stream(structure);
    Empty empty;
    stream.read(empty, 1);
    EXPECT_EQ(stream.reader().position(), 11U);
    // A list's element may be the end of a structure; it is then passed over like a number.
    const PakData closed = bytesOf("19 00 01 0B 20 05");
    InputStream list(closed);
    EXPECT_TRUE(list.skipToTag(2));
    EXPECT_EQ((valueRead<std::map<std::string, int32_t>>(
                  bytesOf("08 00 02 06 01 61 10 01 06 01 61 10 02"))),
              (std::map<std::string, int32_t>{{"a", 2}}));
}

TEST(PakCompactInput, StringsAreLimitedOnBothSides) {
    constexpr uint32_t kLimit = 104857600;
    std::string text(kLimit, 'x');
    OutputStream stream;
    stream.write(text, 0);
    EXPECT_EQ(valueRead<std::string>({stream.bytes().begin(), stream.bytes().end()}), text);
    text += 'x';
    EXPECT_EQ(outcomeOf([&] { stream.write(text, 3); }),
              "raised: invalid string size, tag: 3, size: 104857601");
}

TEST(BufferReader, ChecksEveryAccess) {
    const PakData bytes = bytesOf("01 02 03");
    BufferReader reader{std::span<const uint8_t>(bytes)};
    uint8_t to[4] = {};
    reader.readBuf(to, 2);
    EXPECT_EQ(to[1], 2);
    EXPECT_EQ(outcomeOf([&] { reader.readBuf(to, 2); }),
              "raised: buffer overflow when peekBuf, over 3.");
    EXPECT_EQ(outcomeOf([&] { reader.peekBuf(to, SIZE_MAX, 1); }),
              "raised: buffer overflow when peekBuf with offset, over 3.");
    EXPECT_EQ(outcomeOf([&] { reader.peekBuf(to, 1, SIZE_MAX); }),
              "raised: buffer overflow when peekBuf with offset, over 3.");
    EXPECT_EQ(outcomeOf([&] { reader.skip(SIZE_MAX); }),
              "raised: buffer overflow when skip, over 3.");
    EXPECT_EQ(reader.position(), 2U);
    DataHead head;
    EXPECT_EQ(head.peekFrom(reader), 1U);
    EXPECT_EQ(head.type, 3);
}

TEST(PakDecodeException, TextsAreCut) {
    EXPECT_EQ(outcomeOf([] { analyticspak::raiseDecode("%s", std::string(200, 'x').c_str()); }),
              "raised: " + std::string(63, 'x'));
    EXPECT_EQ(outcomeOf([] { analyticspak::raiseDecodeLong("%s", std::string(200, 'x').c_str()); }),
              "raised: " + std::string(127, 'x'));
}

}  // namespace
}  // namespace vorla::test
