#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"

#include "tests/NEX/NEX+PAK/SerializationPAK/compact/Buoy.h"

namespace vorla::test {
namespace {

using analyticsnex::ZenPacket;

struct Answer {
    static constexpr const char* structName = "SEA.Answer";
    char result = 0;
    void writeTo(analyticspak::PakOutputStream& stream) const { stream.write(result, 0); }
    void readFrom(analyticspak::PakInputStream& stream) { stream.read(result, 0); }
};

ZenPacket smallPacket() {
    ZenPacket packet;
    packet.sServantName = "s";
    packet.sFuncName = "f";
    packet.iRequestId = 5;
    return packet;
}

std::string outcomeOfDecode(const PakData& bytes) {
    return outcomeOf([&] { ZenPacket().decode(bytes.data(), bytes.size()); });
}

TEST(CompactPacket, HasItsBytes) {
    ZenPacket packet = smallPacket();
    packet.attributes().put("", Answer{-3});
    const std::string bytes = packet.encode();
    EXPECT_EQ(hexOf({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()}),
              "00 00 00 35 10 02 2C 3C 40 05 56 01 73 66 01 66 7D 00 00 1C "
              "08 00 01 06 00 18 00 01 06 0A 53 45 41 2E 41 6E 73 77 65 72 "
              "1D 00 00 04 0A 00 FD 0B 8C 98 0C A8 0C");
}

TEST(CompactPacket, RefusesToEncodeWithoutNames) {
    ZenPacket packet;
    EXPECT_EQ(outcomeOf([&] { (void)packet.encode(); }), "raised: ServantName must not be empty");
    packet.sServantName = "s";
    EXPECT_EQ(outcomeOf([&] { (void)packet.encode(); }), "raised: FuncName must not be empty");
}

TEST(CompactPacket, OnlyTheLengthIsTakenOnTrust) {
    struct {
        const char* name;
        PakData bytes;
        const char* outcome;
    } const rows[] = {
        {"three bytes", bytesOf("00 00 03"), "raised: packet length too short"},
        {"no fields", bytesOf("00 00 00 04"), "raised: require field not exist, tag: 1"},
        {"only the required fields", bytesOf("FF FF FF FF 10 02 4C 56 00 66 00 7D 00 00 02 08 0C"),
         "done"},
        {"attributes missing", bytesOf("00 00 00 00 10 02 4C 56 00 66 00 7D 00 0C"),
         "raised: require field not exist, tag: 0"},
        {"no map for attributes", bytesOf("00 00 00 00 10 02 4C 56 00 66 00 7D 00 00 01 0C"),
         "raised: read 'map' type mismatch, tag: 0, get type: 12."},
        {"id too wide",
         bytesOf("00 00 00 00 10 02 43 00 00 00 00 00 00 00 01 56 00 66 00 7D 00 00 02 08 0C"),
         "raised: read 'Int32' type mismatch, tag: 4, get type: 3."},
    };
    for (const auto& row : rows) EXPECT_EQ(outcomeOfDecode(row.bytes), row.outcome) << row.name;
}

TEST(CompactPacket, AttributesAreFoundByNameAndStructure) {
    ZenPacket packet = smallPacket();
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
