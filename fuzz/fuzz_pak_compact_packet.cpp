// The compact reader over a packet and the record in it: exceptions or a value, nothing else; and
// a packet that was read is read the same after it was encoded again.

#include <cstddef>
#include <cstdio>

#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"
#include "fuzz/FuzzStructures.h"

namespace {

struct Record {
    static constexpr const char* structName = "r";
    char cState = 0;
    int64_t lTime = 0;
    double dHeight = 0;
    std::string sName;
    std::vector<char> vPicture;
    std::vector<std::string> vNotes;
    std::map<std::string, std::vector<int32_t>> mTags;
    std::vector<Record> vNear;

    void writeTo(analyticspak::PakOutputStream& stream) const {
        stream.write(cState, 0);
        stream.write(lTime, 1);
        stream.write(dHeight, 3);
        stream.write(sName, 4);
        stream.write(vPicture, 5);
        stream.write(vNotes, 7);
        stream.write(mTags, 15);
        stream.write(vNear, 17);
    }
    void readFrom(analyticspak::PakInputStream& stream) {
        stream.read(cState, 0, false);
        stream.read(lTime, 1, true);
        stream.read(dHeight, 3, false);
        stream.read(sName, 4, false);
        stream.read(vPicture, 5, false);
        stream.read(vNotes, 7, false);
        stream.read(mTags, 15, false);
        stream.read(vNear, 17, false);
    }
};

PakData encoded(const Record& record) {
    analyticspak::PakOutputStream stream;
    stream.write(record, 0);
    const auto bytes = stream.bytes();
    return {bytes.begin(), bytes.end()};
}

void readRecord(std::span<const uint8_t> bytes) {
    using vorla::fuzz::succeeds;
    Record record;
    if (!succeeds([&] { analyticspak::PakInputStream(bytes).read(record, 0); })) return;
    const PakData written = encoded(record);
    Record again;
    vorla::fuzz::require(succeeds([&] { analyticspak::PakInputStream(written).read(again, 0); }));
    vorla::fuzz::require(encoded(again) == written);
}

void readPacket(const uint8_t* bytes, size_t size) {
    analyticsnex::ZenPacket packet;
    packet.decode(bytes, size);
    Record record;
    vorla::fuzz::succeeds([&] { packet.attributes().get("", record); });
    if (packet.sServantName.empty() || packet.sFuncName.empty()) return;
    const std::string written = packet.encode();
    analyticsnex::ZenPacket again;
    again.decode(written.data(), written.size());
    vorla::fuzz::require(again.encode() == written);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // The reader prints what it cannot pass over, thousands of times in a second here.
    return std::freopen("/dev/null", "w", stdout) ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const PakData copy(bytes, bytes + size);
    vorla::fuzz::succeeds([&] { readPacket(copy.data(), copy.size()); });
    readRecord(copy);
    return 0;
}
