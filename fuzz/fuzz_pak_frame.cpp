// The frame of a packet and what is inside: a wrong frame raises, a right one is read or refused.

#include <cstddef>

#include "NEX/NEX+PAK/SerializationPAK/ZenAttributeValues.h"
#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"
#include "fuzz/FuzzStructures.h"

using namespace vorla::fuzz;

namespace {

void use(const ZenPacket& packet) {
    succeeds([&] { (void)packet.getReturnCode(); });
    succeeds([&] { (void)packet.getObjectAttr("", FuzzNode::pakClass()); });
    for (const auto& [name, types] : packet.attributes().pak_zenAttributes()) {
        const std::string_view text = name.stringValue();
        succeeds([&] { (void)ZenAttributeValues::numberWithName(text, packet.attributes()); });
        succeeds([&] { (void)ZenAttributeValues::stringWithName(text, packet.attributes()); });
        succeeds([&] { (void)ZenAttributeValues::dataWithName(text, packet.attributes()); });
        (void)packet.objectKeyWithName(text);
    }
    (void)packet.description();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    throwOnFailedChecks();
    PakData frame(bytes, bytes + size);
    // Half of the inputs get the right length, or hardly any would come further.
    const bool mended = size >= 4 && (frame[0] & 1) != 0;
    if (mended) pack_32(frame.data(), static_cast<int32_t>(size));
    ZenPacket packet;
    if (!succeeds([&] { packet.fromData(frame); })) return 0;
    use(packet);
    const PakData written = packet.toData();
    ZenPacket again;
    require(succeeds([&] { again.fromData(written); }));
    require(again.toData() == written);
    return 0;
}
