#include "tests/NEX/NEX+PAK/SerializationPAK/Buoy.h"

#include "NEX/NEX+PAK/SerializationPAK/ZenAttributeValues.h"
#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"

namespace vorla::test {
namespace {

TEST(PakAgreement, EachCodecReadsWhatTheOtherWrites) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        const Buoy buoy = BuoyYard(seed).make(2);
        const PakData bytes = encoded(buoy);
        const auto declared = pakObjectFromData<DeclaredBuoy>(bytes);
        ASSERT_EQ(declared->pak_lTime(), buoy.lTime) << seed;
        ASSERT_EQ(declared->pak_sName(), buoy.sName) << seed;
        ASSERT_EQ(declared->pak_vWaves().size(), buoy.vWaves.size()) << seed;
        const PakData again = declared->toData();
        ASSERT_EQ(hexOf(again), hexOf(bytes)) << seed;
        const Buoy back = decoded(again);
        ASSERT_EQ(back.vNear.size(), buoy.vNear.size()) << seed;
        ASSERT_EQ(encoded(back), bytes) << seed;
    }
}

TEST(PakAgreement, PacketsOfEitherAreReadByTheOther) {
    const Buoy buoy = BuoyYard(7).make(1);
    analyticsnex::ZenPacket compact;
    compact.sServantName = "harbour";
    compact.sFuncName = "enter";
    compact.iRequestId = 12;
    compact.context = {{"a", "b"}};
    compact.attributes().put("req", buoy);
    const std::string bytes = compact.encode();

    const auto packet = pakObjectFromData<ZenPacket>(PakData(bytes.begin(), bytes.end()));
    EXPECT_EQ(packet->sServantName(), "harbour");
    EXPECT_EQ(packet->iRequestId(), PakValue(12));
    EXPECT_EQ(packet->context(), (PakDictionary{{"a", "b"}}));
    EXPECT_EQ(packet->objectKeyWithName("req"), "SEA.Buoy");
    const auto object = packet->getObjectAttr("req", DeclaredBuoy::pakClass());
    EXPECT_EQ(std::static_pointer_cast<DeclaredBuoy>(object)->toData(), encoded(buoy));

    const PakData again = packet->toData();
    EXPECT_EQ(again, PakData(bytes.begin(), bytes.end()));
    analyticsnex::ZenPacket back;
    back.decode(again.data(), again.size());
    Buoy got;
    back.attributes().get("req", got);
    EXPECT_EQ(encoded(got), encoded(buoy));
}

// Where the two part on purpose.
TEST(PakAgreement, DifferencesAreTheKnownOnes) {
    // An unknown field between known ones: sought over here, in the way there.
    const PakData between = bytesOf("20 05 40 01 F6 10 01 78");
    EXPECT_EQ(decoded(between).sName, "x");
    EXPECT_EQ(pakObjectFromData<DeclaredBuoy>(between)->pak_sName(), "");

    // A wider form than the field's, even of a small value: refused here, cut to width there.
    const PakData wide = bytesOf("23 00 00 00 00 00 00 00 07");
    EXPECT_EQ(outcomeOf([&] { decoded(wide); }),
              "raised: read 'Int32' type mismatch, tag: 2, get type: 3.");
    EXPECT_EQ(pakObjectFromData<DeclaredBuoy>(wide)->pak_iNumber(), 7);

    // Bytes as a list of numbers: taken here, a failure there.
    const PakData list = bytesOf("20 01 F9 11 00 02 00 AA 0C");
    EXPECT_EQ(decoded(list).vPicture, bytesOf("AA 00"));
    EXPECT_EQ(outcomeOf([&] { pakObjectFromData<DeclaredBuoy>(list); }), "raised: ");

    // A wrong length: not looked at here.
    analyticsnex::ZenPacket packet;
    packet.sServantName = packet.sFuncName = "x";
    std::string bytes = packet.encode();
    bytes[0] = 0x7F;
    EXPECT_EQ(outcomeOf([&] { analyticsnex::ZenPacket().decode(bytes.data(), bytes.size()); }),
              "done");
    EXPECT_NE(outcomeOf([&] { ZenPacket().fromData(PakData(bytes.begin(), bytes.end())); }),
              "done");
}

}  // namespace
}  // namespace vorla::test
