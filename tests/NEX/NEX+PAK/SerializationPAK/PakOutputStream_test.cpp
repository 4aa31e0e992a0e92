#include "tests/NEX/NEX+PAK/SerializationPAK/PakTestSupport.h"

namespace vorla::test {
namespace {

TEST(PakOutputStream, GrowsByDoublingFromItsStart) {
    const std::string bytes(5000, 'x');
    struct {
        const char* name;
        int32_t start;
        int32_t before;
        int32_t size;
        int32_t capacity;
    } const rows[] = {
        {"fits exactly", 4096, 0, 4096, 4096},
        {"one more", 4096, 1, 4096, 8192},
        {"zero counts as one", 0, 0, 4096, 4096},
        {"negative counts as one", -7, 0, 4096, 4096},
        {"no power of two", 3, 0, 100, 192},
        {"several doublings in one call", 16, 10, 500, 512},
        {"one byte of head in one byte", 1, 0, 0, 1},
    };
    for (const auto& row : rows) {
        PakOutputStream stream(row.start);
        stream.writeBytes(bytes.data(), row.before);
        if (row.size > 0)
            stream.writeBytes(bytes.data(), row.size);
        else
            stream.writeTag(0, PAK_TYPE_ZERO);
        EXPECT_EQ(stream.streamSize(), row.capacity) << row.name;
    }
    EXPECT_EQ(PakOutputStream::stream()->streamSize(), 4096);
    EXPECT_EQ(PakOutputStream::streamWithCapability(16)->streamSize(), 80);
}

TEST(PakOutputStream, WritesRawPrimitives) {
    PakOutputStream stream(1);
    stream.writeInt1(-2);
    stream.writeInt2(0x0102);
    stream.writeInt4(0x03040506);
    stream.writeInt8(0x0708090A0B0C0D0E);
    stream.fillWithZero(2);
    stream.writeTag(300, 0x1F);
    EXPECT_EQ(hexOf(*stream.data()), "FE 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 00 00 FF 2C");
}

TEST(PakOutputStream, NumbersGoByTheirStoredType) {
    struct {
        const char* name;
        PakValue number;
        const char* bytes;
    } const rows[] = {
        {"unsigned above the signed range", UINT64_MAX, "00 FF"},
        {"unsigned 32 bits", UINT32_MAX, "03 00 00 00 00 FF FF FF FF"},
        {"boolean", true, "00 01"},
        {"float", 2.0F, "04 40 00 00 00"},
        {"double", 2.0, "05 40 00 00 00 00 00 00 00"},
    };
    for (const auto& row : rows) {
        PakOutputStream stream;
        stream.writeNumber(row.number, 0, true);
        EXPECT_EQ(hexOf(stream.written()), row.bytes) << row.name;
    }
}

TEST(PakOutputStream, ChecksItsValues) {
    using Write = void (PakOutputStream::*)(const PakValue&, int32_t, bool);
    struct {
        Write write;
        PakValue wrong;
        const char* test;
    } const rows[] = {
        {&PakOutputStream::writeNumber, "1", "[number isKindOfClass:[NSNumber class]]"},
        {&PakOutputStream::writeString, 1, "[string isKindOfClass:[NSString class]]"},
        {&PakOutputStream::writeData, "1", "[data isKindOfClass:[NSData class]]"},
        {&PakOutputStream::writeArray, 1, "[array isKindOfClass:[NSArray class]]"},
        {&PakOutputStream::writeDictionary, PakArray{},
         "[dictionary isKindOfClass:[NSDictionary class]]"},
        {&PakOutputStream::writeObject, 1, "[object isKindOfClass:[PakObject class]]"},
    };
    for (const auto& row : rows) {
        PakOutputStream stream;
        const auto outcome = [&](const PakValue& value, bool required) {
            return outcomeOf([&] { (stream.*row.write)(value, 1, required); });
        };
        EXPECT_EQ(outcome(row.wrong, true), row.test);
        EXPECT_EQ(outcome({}, true), "required == NO") << row.test;
        EXPECT_EQ(outcome({}, false), "done") << row.test;
        EXPECT_EQ(stream.cursor(), 0) << row.test;
    }
    PakOutputStream stream;
    EXPECT_EQ(outcomeOf([&] { stream.writeAnything({}, 1, false); }), "0");
    EXPECT_EQ(outcomeOf([&] { stream.writeArray(PakArray{PakValue()}, 1); }), "0");
    stream.setStreamSize(0);
    EXPECT_EQ(outcomeOf([&] { stream.writeInt1(1); }), "_streamSize != 0");
    stream.setStreamSize(1);
    EXPECT_EQ(outcomeOf([&] { stream.writeBytes("", INT32_MAX); }), "_streamBuffer");
}

TEST(PakOutputStreamDeathTest, AFailedCheckEndsTheProcess) {
    PakOutputStream stream;
    EXPECT_DEATH(stream.writeString(PakValue(), 1, true), "required == NO");
}

TEST(PakStream, DescribesItsBytesAroundTheCursor) {
    PakInputStream in(bytesOf("01 02 03 04 05"));
    in.skip(1);
    EXPECT_EQ(in.description(), "<01> ^cursor <02030405>");
    in.setCursor(6);
    EXPECT_EQ(outcomeOf([&] { (void)in.description(); }), "_cursor <= originData.length");
    PakOutputStream out;
    out.writeInt4(1);
    EXPECT_EQ(out.description(), "<00000001> ^cursor <>");
    EXPECT_EQ(PakStream().data(), std::nullopt);
}

}  // namespace
}  // namespace vorla::test
