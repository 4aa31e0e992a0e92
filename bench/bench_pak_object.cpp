// The object layer: declared structures.

#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"
#include "bench/bench_pak_records.h"

namespace vorla::bench {
namespace {

template <typename Declared, typename T>
std::shared_ptr<Declared> declaredOf(const T& record) {
    return pakObjectFromData<Declared>(analyticspak::bytesOfRecord(record));
}

template <typename Declared, typename T>
void encodeObject(benchmark::State& state, const T& record) {
    const auto object = declaredOf<Declared>(record);
    ::PakOutputStream stream;
    for (auto _ : state) {
        stream.setCursor(0);
        outOfLine([](auto& from, auto& to) { from.__pack(to); }, *object, stream);
        benchmark::DoNotOptimize(stream.streamBuffer());
        benchmark::ClobberMemory();
    }
}

template <typename Declared, typename T>
void decodeObject(benchmark::State& state, const T& record) {
    const PakData bytes = analyticspak::bytesOfRecord(record);
    for (auto _ : state) benchmark::DoNotOptimize(pakObjectFromData<Declared>(bytes));
}

PakData packetObject(const std::shared_ptr<DeclaredStat>& stat) {
    ZenPacket packet;
    packet.setSServantName("zbpcstat");
    packet.setSFuncName("stat");
    packet.putObjectAttr("req", stat);
    return packet.toData();
}

PakObjectPtr statOfObject(const PakData& bytes) {
    ZenPacket packet;
    packet.fromData(bytes);
    return packet.getObjectAttr("req", DeclaredStat::pakClass());
}

}  // namespace

void registerObject() {
    add(
        "record/encode/object", [](auto& s, const auto& r) { encodeObject<DeclaredRecord>(s, r); },
        Record());
    add(
        "record/decode/object", [](auto& s, const auto& r) { decodeObject<DeclaredRecord>(s, r); },
        Record());
    add(
        "map/encode/object", [](auto& s, const auto& r) { encodeObject<DeclaredPairs>(s, r); },
        samplePairs());
    add(
        "map/decode/object", [](auto& s, const auto& r) { decodeObject<DeclaredPairs>(s, r); },
        samplePairs());
    add(
        "list/encode/object", [](auto& s, const auto& r) { encodeObject<DeclaredLists>(s, r); },
        sampleLists());
    add(
        "list/decode/object", [](auto& s, const auto& r) { decodeObject<DeclaredLists>(s, r); },
        sampleLists());
    const auto declared = declaredOf<DeclaredStat>(sampleStat());
    repeat(
        "packet/encode/object", [](const auto& x) { return packetObject(x); }, declared);
    repeat(
        "packet/decode/object", [](const auto& x) { return statOfObject(x); },
        packetObject(declared));
}

}  // namespace vorla::bench
