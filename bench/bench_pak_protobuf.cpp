// Yardstick: protocol buffers.

#include "bench/bench_pak_records.h"
#include "bench_pak.pb.h"

namespace vorla::bench {
namespace {

void fill(ProtoStatEntry& entry, const StatEntry& e) {
    entry.set_protocol(8130), entry.set_key(static_cast<uint32_t>(e.key));
    entry.set_first(static_cast<uint32_t>(e.first)), entry.set_text(e.text);
}

ProtoRecord protoOf(const Record& r) {
    ProtoRecord p;
    p.set_a(r.a), p.set_b(r.b), p.set_c(r.c), p.set_d(r.d), p.set_e(r.e), p.set_f(r.f);
    p.set_degrees(r.degrees), p.set_name(r.name), p.set_note(r.note);
    p.mutable_waves()->Add(r.waves.begin(), r.waves.end());
    return p;
}

ProtoMap protoOf(const Pairs& pairs) {
    ProtoMap p;
    for (const auto& [key, value] : pairs.pairs) (*p.mutable_pairs())[key] = value;
    return p;
}

ProtoStat protoOf(const Stat& stat) {
    ProtoStat p;
    auto& comm = *p.mutable_comm();
    comm.set_guid(stat.comm.guid), comm.set_version(stat.comm.version);
    comm.set_supply(static_cast<uint32_t>(stat.comm.supply)), comm.set_system(stat.comm.system);
    comm.set_language(1), comm.set_digit(64);
    for (const StatEntry& e : stat.entries) {
        fill(*p.add_entries(), e);
    }
    return p;
}

ProtoLists protoOf(const Lists& lists) {
    ProtoLists p;
    p.mutable_numbers()->Add(lists.numbers.begin(), lists.numbers.end());
    for (const std::string& text : lists.texts) p.add_texts(text);
    for (const StatEntry& e : lists.entries) fill(*p.add_entries(), e);
    return p;
}

template <typename T>
void encodeProtobuf(benchmark::State& state, const T& record) {
    const auto message = protoOf(record);
    std::string bytes;
    for (auto _ : state) {
        outOfLine([](auto& from, auto& to) { from.SerializeToString(&to); }, message, bytes);
        benchmark::DoNotOptimize(bytes.data());
        benchmark::ClobberMemory();
    }
}

template <typename T>
void decodeProtobuf(benchmark::State& state, const T& record) {
    const std::string bytes = protoOf(record).SerializeAsString();
    for (auto _ : state) {
        decltype(protoOf(record)) message;
        outOfLine([](auto& to, auto& from) { to.ParseFromString(from); }, message, bytes);
        benchmark::DoNotOptimize(message);
    }
}

std::string packetProtobuf(const ProtoStat& stat) {
    ProtoAttributes attributes;
    stat.SerializeToString(&(*(*attributes.mutable_names())["req"].mutable_types())["BENCH.Stat"]);
    ProtoPacket packet;
    packet.set_version(2);
    packet.set_request_id(1000);
    packet.set_servant("zbpcstat");
    packet.set_function("stat");
    attributes.SerializeToString(packet.mutable_buffer());
    return packet.SerializeAsString();
}

ProtoStat statOfProtobuf(const std::string& bytes) {
    ProtoPacket packet;
    packet.ParseFromString(bytes);
    ProtoAttributes attributes;
    attributes.ParseFromString(packet.buffer());
    ProtoStat stat;
    stat.ParseFromString(attributes.names().at("req").types().at("BENCH.Stat"));
    return stat;
}

}  // namespace

void registerProtobuf() {
    add(
        "record/encode/protobuf", [](auto& s, const auto& r) { encodeProtobuf(s, r); }, Record());
    add(
        "record/decode/protobuf", [](auto& s, const auto& r) { decodeProtobuf(s, r); }, Record());
    add(
        "map/encode/protobuf", [](auto& s, const auto& r) { encodeProtobuf(s, r); }, samplePairs());
    add(
        "map/decode/protobuf", [](auto& s, const auto& r) { decodeProtobuf(s, r); }, samplePairs());
    add(
        "list/encode/protobuf", [](auto& s, const auto& r) { encodeProtobuf(s, r); },
        sampleLists());
    add(
        "list/decode/protobuf", [](auto& s, const auto& r) { decodeProtobuf(s, r); },
        sampleLists());
    const auto proto = protoOf(sampleStat());
    repeat(
        "packet/encode/protobuf", [](const auto& x) { return packetProtobuf(x); }, proto);
    repeat(
        "packet/decode/protobuf", [](const auto& x) { return statOfProtobuf(x); },
        packetProtobuf(proto));
}

}  // namespace vorla::bench
