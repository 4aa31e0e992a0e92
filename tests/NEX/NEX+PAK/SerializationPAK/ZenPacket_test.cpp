#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"

#include "NEX/NEX+PAK/SerializationPAK/ZenAttributeValues.h"
#include "tests/NEX/NEX+PAK/SerializationPAK/PakTestSupport.h"

namespace vorla::test {
namespace {

using Values = ZenAttributeValues;

/// Length and header of a packet with request id 5, servant "s", function "f" and those attributes.
PakData framed(const PakData& attributes) {
    PakOutputStream buffer;
    buffer.writeData(attributes, 7);
    PakData packet = bytesOf("00 00 00 00 10 02 2C 3C 40 05 56 01 73 66 01 66") + *buffer.data() +
                     bytesOf("8C 98 0C A8 0C");
    packet[3] = static_cast<uint8_t>(packet.size());
    return packet;
}

std::shared_ptr<ZenPacket> smallPacket() {
    auto packet = ZenPacket::packet();
    packet->setIRequestId(5);
    packet->setSServantName("s");
    packet->setSFuncName("f");
    return packet;
}

TEST(ZenPacket, HasItsBytes) {
    EXPECT_EQ(hexOf(smallPacket()->toData()), hexOf(framed(bytesOf("08 0C"))));
    auto answer = smallPacket();
    Values::setInt(-3, answer->attributes(), "");
    EXPECT_EQ(
        hexOf(answer->toData()),
        hexOf(framed(bytesOf("08 00 01 06 00 18 00 01 06 05 69 6E 74 33 32 1D 00 00 02 00 FD"))));
}

TEST(ZenPacket, ComesBackAsItWas) {
    auto packet = smallPacket();
    packet->setContext({{"k", "v"}});
    packet->setStatus({{"", "x"}});
    packet->setIVersion(int64_t{1} << 40);
    packet->putDataAttr("crypt", bytesOf("01 02"));
    packet->putObjectAttr("text", "abc");
    const auto back = pakObjectFromData<ZenPacket>(packet->toData());
    EXPECT_EQ(back->toData(), packet->toData());
    EXPECT_EQ(back->iVersion().int64Value(), int64_t{1} << 40);
    EXPECT_EQ(back->context(), (PakDictionary{{"k", "v"}}));
    EXPECT_EQ(back->objectKeyWithName("crypt"), "list<char>");
    EXPECT_EQ(Values::dataWithName("crypt", back->attributes()), bytesOf("01 02"));
    EXPECT_EQ(Values::stringWithName("text", back->attributes()), "abc");
    EXPECT_EQ(back->getReturnCode(), 0);
    EXPECT_EQ(back->objectKeyWithName("none"), std::nullopt);
}

TEST(ZenPacket, RefusesAFrameThatContradictsItsBytes) {
    const std::string refusal =
        "raised: -[ZenPacket __unpack:], 113: assert(stream.streamSize == size) fail!";
    const PakData good = framed(bytesOf("08 0C"));
    PakData negative = good;
    negative[0] = 0xFF;
    struct {
        const char* name;
        PakData bytes;
        std::string outcome;
    } const rows[] = {
        {"whole", good, "done"},
        {"one byte more", good + bytesOf("00"), refusal},
        {"one byte less", PakData(good.begin(), good.end() - 1), refusal},
        {"negative length", negative, refusal},
        {"shorter than a length", bytesOf("00 00 03"), refusal},
        {"nothing", {}, refusal},
        {"nothing but the length", bytesOf("00 00 00 04"), "required == NO"},
        {"attributes cut short", framed(bytesOf("08")), "_headTag == tag"},
        {"no attributes", framed({}), "required == NO"},
        {"attributes of another kind", framed(bytesOf("09 0C")), "_headType == PAK_TYPE_MAP"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(outcomeOf([&] { ZenPacket().fromData(row.bytes); }), row.outcome) << row.name;
}

TEST(ZenAttribute, EachKindHasItsTypeNameAndBytes) {
    ZenAttribute a;
    const auto station = WeatherReading::object();
    Values::setBool(true, a, "n");
    const auto check = [&](const char* type, const char* bytes) {
        EXPECT_EQ(a.typeOfName("n"), type);
        EXPECT_EQ(hexOf(a.attrValueWithName("n", type).value()), bytes);
        EXPECT_EQ(a.pak_zenAttributes().size(), 1U);
    };
    check("bool", "00 01");
    EXPECT_TRUE(Values::boolValueWithName("n", a));
    Values::setChar(-1, a, "n");
    check("char", "00 FF");
    EXPECT_EQ(Values::charValueWithName("n", a), -1);
    Values::setShort(300, a, "n");
    check("short", "01 01 2C");
    EXPECT_EQ(Values::shortValueWithName("n", a), 300);
    Values::setInt(0, a, "n");
    check("int32", "0C");
    EXPECT_EQ(Values::intValueWithName("n", a), 0);
    Values::setLonglong(INT64_MIN, a, "n");
    check("int64", "03 80 00 00 00 00 00 00 00");
    EXPECT_EQ(Values::longlongValueWithName("n", a), INT64_MIN);
    EXPECT_EQ(Values::numberWithName("n", a), PakValue(INT64_MIN));
    Values::setFloat(1, a, "n");
    check("float", "04 3F 80 00 00");
    EXPECT_EQ(Values::floatValueWithName("n", a), 1);
    Values::setDouble(1, a, "n");
    check("double", "05 3F F0 00 00 00 00 00 00");
    EXPECT_EQ(Values::doubleValueWithName("n", a), 1);
    Values::setInAttributes(uint32_t{7}, a, "n");
    check("I", "00 07");
    Values::setInAttributes("é", a, "n");
    check("string", "06 02 C3 A9");
    Values::setInAttributes(PakData{9}, a, "n");
    check("list<char>", "0D 00 00 01 09");
    Values::setInAttributes(PakArray{1}, a, "n", "list<int32>");
    check("list<int32>", "09 00 01 00 01");
    EXPECT_EQ(Values::arrayWithName("n", a, PakClass::numberClass()), (PakArray{1}));
    Values::setInAttributes(station, a, "n");
    check("WX.Reading", "0A 0C 15 00 00 00 00 00 00 00 00 0B");
    EXPECT_NE(Values::objectWithName(WeatherReading::pakClass(), "n", a), nullptr);
    Values::setInAttributes(station, a, "n", "other");
    EXPECT_EQ(outcomeOf([&] { Values::objectWithName(WeatherReading::pakClass(), "n", a); }),
              "raised: type mismatch!");
}

TEST(ZenAttribute, RefusesWhatContradictsIt) {
    ZenAttribute a;
    Values::setInAttributes("text", a, "n");
    EXPECT_EQ(outcomeOf([&] { Values::intValueWithName("n", a); }), "raised: type mismatch!");
    EXPECT_TRUE(a.attrValueWithName("n").has_value());
    EXPECT_EQ(outcomeOf([&] { a.setAttrValue({}, std::nullopt, "t"); }), "raised: ");
    EXPECT_EQ(outcomeOf([&] { a.setAttrValue({}, "n", std::nullopt); }), "raised: ");
    // A structure that is not sent by name has no type to be stored under.
    EXPECT_EQ(outcomeOf([&] { Values::setInAttributes(HandWritten::object(), a, "h"); }),
              "raised: ");
    EXPECT_EQ(outcomeOf([&] { Values::setInAttributes(PakArray{}, a, "l"); }), "0");
    a.setPak_zenAttributes(
        {{"two", PakDictionary{{"a", PakData()}, {"b", PakData()}}}, {"none", PakDictionary()}});
    EXPECT_EQ(outcomeOf([&] { (void)a.attrValueWithName("two"); }), "raised: ");
    EXPECT_EQ(outcomeOf([&] { (void)a.attrValueWithName("none"); }), "raised: ");
    EXPECT_EQ(a.typeOfName("two"), "a");
    EXPECT_EQ(a.typeOfName("none"), std::nullopt);
}

TEST(ZenAttribute, WhatIsMissingReadsAsNothing) {
    const ZenAttribute a;
    EXPECT_FALSE(Values::boolValueWithName("n", a));
    EXPECT_EQ(Values::intValueWithName("n", a), 0);
    EXPECT_EQ(Values::doubleValueWithName("n", a), 0);
    EXPECT_EQ(Values::dataWithName("n", a), std::nullopt);
    EXPECT_EQ(Values::stringWithName("n", a), std::nullopt);
    EXPECT_EQ(Values::arrayWithName("n", a, PakClass::numberClass()), std::nullopt);
    EXPECT_TRUE(Values::numberWithName("n", a).isNothing());
    EXPECT_EQ(Values::objectWithName(WeatherReading::pakClass(), "n", a), nullptr);
}

TEST(ZenPacket, GivesObjectsWhateverTheirType) {
    auto packet = smallPacket();
    auto sent = WeatherReading::object();
    sent->setPak_iTime(12);
    packet->putObjectAttr("req", sent);
    EXPECT_EQ(packet->objectKeyWithName("req"), "WX.Reading");
    packet->putObjectAttr("req", "any", sent);
    EXPECT_EQ(packet->objectKeyWithName("req"), "any");
    const auto got = packet->getObjectAttr("req", WeatherReading::pakClass());
    EXPECT_EQ(std::static_pointer_cast<WeatherReading>(got)->pak_iTime(), 12);
    EXPECT_EQ(packet->getObjectAttr("none", WeatherReading::pakClass()), nullptr);
    EXPECT_EQ(outcomeOf([&] { (void)packet->getObjectAttr("req", PakClass::stringClass()); }),
              "[theClass isSubclassOfClass:[PakObject class]]");
}

TEST(ZenPacket, DescribesItself) {
    EXPECT_EQ(smallPacket()->description(),
              "\n--------------- ZenPacket ---------------\nversion     : 2\npacket-type : 0\n"
              "message-type: 0\nrequest-id  : 5\nservant-name: s\nfunc-name   : f\n"
              "buffer      : <>\ntimeout     : 0\ncontext     : {}\nstatus      : {}\n"
              "----------------- Attributes --------------\n{}\n");
}

}  // namespace
}  // namespace vorla::test
