#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"

#include "NEX/NEX+PAK/SerializationPAK/ZenAttributeValues.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"
#include "tests/NEX/NEX+PAK/SerializationPAK/Buoy.h"

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
    const auto check = [&](const char* type, const char* bytes) {
        EXPECT_EQ(a.typeOfName("n"), type);
        EXPECT_EQ(hexOf(a.attrValueWithName("n", type).value()), bytes);
        EXPECT_EQ(a.pak_zenAttributes().size(), 1U);
    };
    Values::setBool(true, a, "n");
    check("bool", "00 01");
    EXPECT_TRUE(Values::boolValueWithName("n", a));
    Values::setChar(-1, a, "n");
    check("char", "00 FF");
    Values::setShort(300, a, "n");
    check("short", "01 01 2C");
    Values::setInt(0, a, "n");
    check("int32", "0C");
    Values::setLonglong(INT64_MIN, a, "n");
    check("int64", "03 80 00 00 00 00 00 00 00");
    EXPECT_EQ(Values::numberWithName("n", a), PakValue(INT64_MIN));
    Values::setFloat(1, a, "n");
    check("float", "04 3F 80 00 00");
    Values::setDouble(1, a, "n");
    check("double", "05 3F F0 00 00 00 00 00 00");
    EXPECT_EQ(Values::doubleValueWithName("n", a), 1);
    Values::setInAttributes(uint32_t{7}, a, "n");
    check("I", "00 07");
    Values::setInAttributes("é", a, "n");
    check("string", "06 02 C3 A9");
    EXPECT_EQ(Values::stringWithName("n", a), "é");
    Values::setInAttributes(PakData{9}, a, "n");
    check("list<char>", "0D 00 00 01 09");
    Values::setInAttributes(PakArray{1}, a, "n", "list<int32>");
    check("list<int32>", "09 00 01 00 01");
    EXPECT_EQ(Values::arrayWithName("n", a, PakClass::numberClass()), (PakArray{1}));
    const auto buoy = pakObjectFromData<DeclaredBuoy>(bytesOf("20 07"));
    Values::setInAttributes(buoy, a, "n");
    EXPECT_EQ(a.typeOfName("n"), "SEA.Buoy");
    EXPECT_NE(Values::objectWithName(DeclaredBuoy::pakClass(), "n", a), nullptr);
    Values::setInAttributes(buoy, a, "n", "other");
    EXPECT_EQ(outcomeOf([&] { Values::objectWithName(DeclaredBuoy::pakClass(), "n", a); }),
              "raised: type mismatch!");
    // What is missing reads as nothing.
    EXPECT_EQ(Values::intValueWithName("none", a), 0);
    EXPECT_EQ(Values::stringWithName("none", a), std::nullopt);
    EXPECT_EQ(Values::objectWithName(DeclaredBuoy::pakClass(), "none", a), nullptr);
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

TEST(CompactPacket, OnlyTheLengthIsTakenOnTrust) {
    const struct {
        const char *bytes, *outcome;
    } rows[] = {
        {"00 00 03", "raised: packet length too short"},
        {"00 00 00 04", "raised: require field not exist, tag: 1"},
        {"FF FF FF FF 10 02 4C 56 00 66 00 7D 00 00 02 08 0C", "done"},
        {"00 00 00 00 10 02 4C 56 00 66 00 7D 00 0C", "raised: require field not exist, tag: 0"},
        {"00 00 00 00 10 02 43 00 00 00 00 00 00 00 01 56 00 66 00 7D 00 00 02 08 0C",
         "raised: read 'Int32' type mismatch, tag: 4, get type: 3."},
    };
    for (const auto& row : rows) {
        const PakData bytes = bytesOf(row.bytes);
        EXPECT_EQ(outcomeOf([&] { analyticsnex::ZenPacket().decode(bytes.data(), bytes.size()); }),
                  row.outcome)
            << row.bytes;
    }
}

struct Answer {
    static constexpr const char* structName = "SEA.Answer";
    char result = 0;
    void writeTo(analyticspak::PakOutputStream& stream) const { stream.write(result, 0); }
    void readFrom(analyticspak::PakInputStream& stream) { stream.read(result, 0); }
};

TEST(CompactPacket, AttributesAreFoundByNameAndStructure) {
    analyticsnex::ZenPacket packet;
    EXPECT_EQ(outcomeOf([&] { (void)packet.encode(); }), "raised: ServantName must not be empty");
    packet.sServantName = "s";
    EXPECT_EQ(outcomeOf([&] { (void)packet.encode(); }), "raised: FuncName must not be empty");
    packet.attributes().put("rsp", Buoy{.iNumber = 3});
    packet.attributes().put("rsp", Answer{4});
    Answer answer;
    packet.attributes().get("rsp", answer);
    EXPECT_EQ(answer.result, 4);
    Buoy buoy;
    EXPECT_EQ(outcomeOf([&] { packet.attributes().get("none", buoy); }),
              "raised: ZenAttribute not found key:none,type:SEA.Buoy");
    EXPECT_EQ(outcomeOf([&] { packet.attributes().get("rsp", buoy); }),
              "raised: ZenAttribute type match fail,key:rsp,type:SEA.Buoy,may be:SEA.Answer");
}

}  // namespace
}  // namespace vorla::test
