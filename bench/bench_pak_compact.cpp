// The compact codec.

#include "bench/bench_pak_records.h"

namespace vorla::bench {
namespace {

using analyticspak::bytesOfRecord;
using analyticspak::PakInputStream;
using analyticspak::PakOutputStream;

template <typename T>
void encodeCompact(benchmark::State& state, const T& record) {
    PakOutputStream stream;
    for (auto _ : state) {
        stream.clear();
        outOfLine([](auto& to, const T& from) { from.writeTo(to); }, stream, record);
        benchmark::DoNotOptimize(stream.bytes().data());
        benchmark::ClobberMemory();
    }
}

template <typename T>
void decodeCompact(benchmark::State& state, const T& record) {
    const PakData bytes = bytesOfRecord(record);
    for (auto _ : state) {
        T read;
        PakInputStream stream(bytes);
        outOfLine([](T& to, auto& from) { to.readFrom(from); }, read, stream);
        benchmark::DoNotOptimize(read);
    }
}

std::string packetCompact(const Stat& stat) {
    analyticsnex::ZenPacket packet;
    packet.sServantName = "zbpcstat";
    packet.sFuncName = "stat";
    packet.attributes().put("req", stat);
    return packet.encode();
}

Stat statOfCompact(const std::string& bytes) {
    analyticsnex::ZenPacket packet;
    packet.decode(bytes.data(), bytes.size());
    Stat stat;
    packet.attributes().get("req", stat);
    return stat;
}

}  // namespace

void registerCompact() {
    add(
        "record/encode/compact", [](auto& s, const auto& r) { encodeCompact(s, r); }, Record());
    add(
        "record/decode/compact", [](auto& s, const auto& r) { decodeCompact(s, r); }, Record());
    add(
        "map/encode/compact", [](auto& s, const auto& r) { encodeCompact(s, r); }, samplePairs());
    add(
        "map/decode/compact", [](auto& s, const auto& r) { decodeCompact(s, r); }, samplePairs());
    add(
        "list/encode/compact", [](auto& s, const auto& r) { encodeCompact(s, r); }, sampleLists());
    add(
        "list/decode/compact", [](auto& s, const auto& r) { decodeCompact(s, r); }, sampleLists());
    repeat(
        "packet/encode/compact", [](const auto& x) { return packetCompact(x); }, sampleStat());
    repeat(
        "packet/decode/compact", [](const auto& x) { return statOfCompact(x); },
        packetCompact(sampleStat()));
}

}  // namespace vorla::bench
