#include "tests/NEX/NEX+PAK/SerializationPAK/PakTestSupport.h"

namespace vorla::test {
namespace {

const PakClass& kNumber = PakClass::numberClass();
const PakClass& kString = PakClass::stringClass();

TEST(PakInputStream, LooksOnlyUnderTheCursor) {
    PakInputStream stream(bytesOf("10 07 36 01 78"));
    EXPECT_EQ(stream.headType(), PAK_TYPE_NONE);
    EXPECT_EQ(stream.readString(3, false), std::nullopt);
    EXPECT_EQ(stream.cursor(), 0);
    EXPECT_EQ(stream.headTag(), 1);
    EXPECT_EQ(stream.readInt(1), 7);
    EXPECT_EQ(stream.readNumber(2, false), PakValue());
    EXPECT_EQ(stream.readString(3, true), "x");
    EXPECT_EQ(stream.stringLength(), 1);
    // Behind the end the last head stays, and nothing is there even for its tag.
    EXPECT_FALSE(stream.peakHead());
    EXPECT_EQ(stream.headTag(), 3);
    EXPECT_EQ(stream.readString(3, false), std::nullopt);
}

TEST(PakInputStream, NumbersKeepTheirWidth) {
    struct {
        const char* bytes;
        char type;
        int64_t value;
    } const rows[] = {
        {"0C", 'c', 0},
        {"00 FE", 'c', -2},
        {"01 FF FE", 's', -2},
        {"02 FF FF FF FE", 'i', -2},
        {"03 FF FF FF FF FF FF FF FE", 'q', -2},
        {"04 C0 00 00 00", 'f', -2},
        {"05 C0 00 00 00 00 00 00 00", 'd', -2},
    };
    for (const auto& row : rows) {
        PakInputStream stream(bytesOf(row.bytes));
        const PakValue number = stream.readNumber(0, true);
        EXPECT_EQ(number.numberType(), row.type) << row.bytes;
        EXPECT_EQ(number.int64Value(), row.value) << row.bytes;
        if (row.type == 'f' || row.type == 'd') continue;
        EXPECT_EQ(PakInputStream(bytesOf(row.bytes)).readInt(0), row.value) << row.bytes;
    }
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
    struct {
        const char* bytes;
        std::function<void(PakInputStream&)> read;
        const char* outcome;
    } const rows[] = {
        {"", number, "required == NO"},
        {"1C", number, "required == NO"},
        {"F1", number, "required == NO"},
        {"06 00", number, "0"},
        {"0E", number, "0"},
        {"0F", number, "0"},
        {"", integer, "_headTag == tag"},
        {"1C", integer, "_headTag == tag"},
        {"04 00 00 00 00", integer, "0"},
        {"05 00 00 00 00 00 00 00 00", [](PakInputStream& in) { in.readFloat(0); },
         "_headType == PAK_TYPE_FLOAT"},
        {"04 00 00 00 00", [](PakInputStream& in) { in.readDouble(0); },
         "_headType == PAK_TYPE_DOUBLE"},
        {"1C", [](PakInputStream& in) { in.readDouble(0); }, "_headTag == tag"},
        {"0C", string, "0"},
        {"06 02 61", string, "_cursor + length <= _streamSize"},
        {"07 FF FF FF FF 61", string, "_cursor + length <= _streamSize"},
        {"1C", data, "raised: "},
        {"0C", data, "raised: "},
        {"0D 01 0C", data, "raised: "},
        {"0D 00 00 FF AA", data, "_cursor + length <= _streamSize"},
        {"0D 00 02 7F FF FF FF AA", data, "_cursor + length <= _streamSize"},
        {"0C", object, "_headType == PAK_TYPE_STRUCT_S"},
        {"0A 00 07", object, "_headType == PAK_TYPE_STRUCT_E"},
        {"0A 00 07 1E", object, "0"},
        {"0A 00 07 1F", object, "0"},
        {"0A 00 07 1D 01 0C 0B", object, "_headType == PAK_TYPE_INT1 && _headTag == 0"},
        {"0A 00 07 1D 00 00 FF 0B", object, "_cursor + length <= _streamSize"},
        {"0A 00 07 16 FF 0B", object, "_cursor + length <= _streamSize"},
        {"0C", list, "_headType == PAK_TYPE_LIST"},
        {"09 02 7F FF FF FF 0C 0C", list, "required == NO"},
        {"09 00 FF 0C", list, "done"},
        {"09 00 01 0F", list, "0"},
        {"0C", map, "_headType == PAK_TYPE_MAP"},
        {"08 00 01 06 01 61", map, "required == NO"},
        {"08 02 7F FF FF FF 06 01 61 1C", map, "required == NO"},
        {"08 00 01 06 01 61 1E", map, "0"},
        {"0C", [](PakInputStream& in) { in.readAnything(0, true, PakClass::arrayClass()); }, "0"},
        {"0C", [](PakInputStream& in) { in.readAnything(0, true, {}); }, "0"},
    };
    for (const auto& row : rows) {
        PakInputStream stream(bytesOf(row.bytes));
        EXPECT_EQ(outcomeOf([&] { row.read(stream); }), row.outcome) << row.bytes;
    }
}

TEST(PakInputStream, ReadsRawBytesUpToTheEnd) {
    PakInputStream stream(bytesOf("01 02 03"));
    EXPECT_EQ(stream.readBytes(1)[0], 1);
    EXPECT_EQ(outcomeOf([&] { stream.readBytes(3); }), "_cursor + length <= _streamSize");
    // In 32 bits the sum of cursor and length would come out small again.
    EXPECT_EQ(outcomeOf([&] { stream.readBytes(UINT32_MAX); }), "_cursor + length <= _streamSize");
    EXPECT_EQ(stream.readDataWithSize(2), bytesOf("02 03"));
    stream.setCursor(1);
    stream.skip(1000);
    EXPECT_EQ(stream.cursor(), 3);
    EXPECT_FALSE(stream.peakHead());
    EXPECT_EQ(stream.data(), bytesOf("01 02 03"));
    EXPECT_EQ(PakInputStream::streamWithData(std::nullopt), nullptr);
}

TEST(PakInputStream, AnEmptyStructureIsMadeAndNotUnpacked) {
    PakInputStream stream(bytesOf("5A 0B 6A 10 01 0B"));
    const auto empty = stream.readObject(5, true, HandWritten::pakClass());
    EXPECT_FALSE(static_cast<const HandWritten&>(*empty).unpacked);
    const auto unknown = stream.readObject(6, true, HandWritten::pakClass());
    EXPECT_TRUE(static_cast<const HandWritten&>(*unknown).unpacked);
}

TEST(PakInputStream, ContainersLeaveOutWhatIsAbsent) {
    // The second string is no UTF-8 and so comes back absent.
    PakInputStream list(bytesOf("09 00 03 06 01 61 06 01 FF 06 01 62"));
    EXPECT_EQ(list.readArray(0, true, kString), (PakArray{"a", "b"}));
    PakInputStream map(
        bytesOf("08 00 04 06 01 61 10 01 06 01 FF 10 02 06 01 62 10 03 06 01 61 10 04"));
    EXPECT_EQ(map.readDictionary(0, true, mapOf(kString, kNumber)),
              (PakDictionary{{"a", 4}, {"b", 3}}));
    // Keys of equal value are equal, whatever their width.
    PakInputStream widths(bytesOf("08 00 02 00 01 10 02 01 00 01 10 03"));
    EXPECT_EQ(widths.readDictionary(0, true, mapOf(kNumber, kNumber)), (PakDictionary{{1, 3}}));
}

TEST(PakInputStream, ForgivingDecoderKeepsItsOwnReading) {
    struct {
        const char* bytes;
        std::optional<std::u16string> units;
    } const rows[] = {
        {"", std::nullopt},
        {"41 42", u"AB"},
        {"C3 A9", u"\u00E9"},
        {"DF BF", u"\u07FF"},
        {"C3", u""},
        {"41 C3", u"A"},
        {"E4 B8 AD", u"\u4E2D"},
        {"E4 B8", u""},
        // One unit from a four-byte sequence, not a pair.
        {"F0 9F 98 80", std::u16string(1, char16_t(0xF600))},
        {"FF FF 81 82 83", std::u16string(1, char16_t(0x1083))},
        {"FF FF 81 82 41", std::u16string(1, char16_t(0x1081))},
        {"C0 80 41", u"A"},
        {"80 41 42 43", u""},
    };
    for (const auto& row : rows) {
        const PakData bytes = bytesOf(row.bytes);
        EXPECT_EQ(PakInputStream::utf8Decode(bytes.data(), static_cast<int32_t>(bytes.size())),
                  row.units)
            << row.bytes;
    }
    EXPECT_EQ(PakInputStream::utf8Decode(nullptr, 5), std::nullopt);
}

TEST(PakInputStream, StringsFallBackToTheForgivingDecoder) {
    // A well-formed string, one that is none, an absent field.
    PakInputStream stream(bytesOf("06 02 C3 A9 16 05 61 E4 B8 62 63 3C"));
    EXPECT_EQ(stream.readUTF8String(0, true), "\u00E9");
    // The three-byte lead takes the letter behind it along.
    EXPECT_EQ(stream.readUTF8String(1, true), "a\u4E22c");
    // Nothing there: the bytes before the cursor once more.
    EXPECT_EQ(stream.readUTF8String(2, false), "a\u4E22c");
    EXPECT_EQ(stream.readInt(3), 0);
    EXPECT_EQ(PakInputStream(bytesOf("06 00")).readUTF8String(0, true), std::nullopt);
    EXPECT_EQ(PakInputStream(bytesOf("06 02 80 80")).readUTF8String(0, true), "");
}

TEST(PakInputStream, RefusesWhatIsNoUtf8) {
    const char* const refused[] = {"80",       "C1 81",       "E0 80 80",
                                   "ED A0 80", "F5 80 80 80", "F4 90 80 80",
                                   "E4 B8",    "F0 80 80 80", "41 41 41 41 41 41 41 C3"};
    for (const char* bytes : refused) {
        const PakData text = bytesOf(bytes);
        PakInputStream stream(PakData{0x06, static_cast<uint8_t>(text.size())} + text);
        EXPECT_EQ(stream.readString(0, true), std::nullopt) << bytes;
        EXPECT_EQ(stream.stringLength(), static_cast<int32_t>(text.size())) << bytes;
    }
    const std::string good = "abcdefgh\u00E9\u4E2D\U0001F600\U0010FFFF";
    PakOutputStream out;
    out.writeString(good, 0);
    EXPECT_EQ(PakInputStream(*out.data()).readString(0, true), good);
}

}  // namespace
}  // namespace vorla::test
