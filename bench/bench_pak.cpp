// The encoding beside two independent serializers, in one run: times and their ratios.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>

#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"
#include "bench/bench_pak_records.h"
#include "bench_pak.pb.h"

namespace vorla::bench {
namespace {

using analyticspak::PakInputStream;
using analyticspak::PakOutputStream;

template <typename T>
PakData compactBytes(const T& record) {
    PakOutputStream stream;
    record.writeTo(stream);
    return {stream.bytes().begin(), stream.bytes().end()};
}

// The same contents for the other layers.

template <typename Declared, typename T>
std::shared_ptr<Declared> declaredOf(const T& record) {
    return pakObjectFromData<Declared>(compactBytes(record));
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
        auto& entry = *p.add_entries();
        entry.set_protocol(8130), entry.set_key(static_cast<uint32_t>(e.key));
        entry.set_first(static_cast<uint32_t>(e.first)), entry.set_text(e.text);
    }
    return p;
}

template <typename T>
void encodeCompact(benchmark::State& state, const T& record) {
    PakOutputStream stream;
    for (auto _ : state) {
        stream.clear();
        record.writeTo(stream);
        benchmark::DoNotOptimize(stream.bytes().data());
        benchmark::ClobberMemory();
    }
}

template <typename T>
void decodeCompact(benchmark::State& state, const T& record) {
    const PakData bytes = compactBytes(record);
    for (auto _ : state) {
        T read;
        PakInputStream stream(bytes);
        read.readFrom(stream);
        benchmark::DoNotOptimize(read);
    }
}

template <typename Declared, typename T>
void encodeObject(benchmark::State& state, const T& record) {
    const auto object = declaredOf<Declared>(record);
    ::PakOutputStream stream;
    for (auto _ : state) {
        stream.setCursor(0);
        object->__pack(stream);
        benchmark::DoNotOptimize(stream.streamBuffer());
        benchmark::ClobberMemory();
    }
}

template <typename Declared, typename T>
void decodeObject(benchmark::State& state, const T& record) {
    const PakData bytes = compactBytes(record);
    for (auto _ : state) benchmark::DoNotOptimize(pakObjectFromData<Declared>(bytes));
}

template <typename T>
void encodeProtobuf(benchmark::State& state, const T& record) {
    const auto message = protoOf(record);
    std::string bytes;
    for (auto _ : state) {
        message.SerializeToString(&bytes);
        benchmark::DoNotOptimize(bytes.data());
        benchmark::ClobberMemory();
    }
}

template <typename T>
void decodeProtobuf(benchmark::State& state, const T& record) {
    const std::string bytes = protoOf(record).SerializeAsString();
    for (auto _ : state) {
        decltype(protoOf(record)) message;
        message.ParseFromString(bytes);
        benchmark::DoNotOptimize(message);
    }
}

template <typename T>
void encodeMsgpack(benchmark::State& state, const T& record) {
    msgpack::sbuffer buffer;
    for (auto _ : state) {
        buffer.clear();
        msgpack::pack(buffer, record);
        benchmark::DoNotOptimize(buffer.data());
        benchmark::ClobberMemory();
    }
}

template <typename T>
void decodeMsgpack(benchmark::State& state, const T& record) {
    msgpack::sbuffer buffer;
    msgpack::pack(buffer, record);
    for (auto _ : state) {
        T read;
        const auto handle = msgpack::unpack(buffer.data(), buffer.size());
        handle->convert(read);
        benchmark::DoNotOptimize(read);
    }
}

// (c): the statistics inside an attribute map inside a packet, with the same three layers of bytes
// for each serializer.

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

using MsgTypes = std::map<std::string, std::vector<char>>;
struct MsgPacket {
    int16_t version = 2, type = 0;
    int32_t message = 0, id = 1000;
    std::string servant = "zbpcstat", function = "stat";
    std::vector<char> buffer;
    int32_t timeout = 0;
    std::map<std::string, std::string> context, status;
    MSGPACK_DEFINE(version, type, message, id, servant, function, buffer, timeout, context, status)
};

template <typename T>
std::vector<char> msgpacked(const T& value) {
    msgpack::sbuffer buffer;
    msgpack::pack(buffer, value);
    return {buffer.data(), buffer.data() + buffer.size()};
}

template <typename T>
T unpacked(const std::vector<char>& bytes) {
    return msgpack::unpack(bytes.data(), bytes.size())->as<T>();
}

std::vector<char> packetMsgpack(const Stat& stat) {
    MsgPacket packet;
    packet.buffer =
        msgpacked(std::map<std::string, MsgTypes>{{"req", {{"BENCH.Stat", msgpacked(stat)}}}});
    return msgpacked(packet);
}

Stat statOfMsgpack(const std::vector<char>& bytes) {
    const auto packet = unpacked<MsgPacket>(bytes);
    const auto names = unpacked<std::map<std::string, MsgTypes>>(packet.buffer);
    return unpacked<Stat>(names.at("req").at("BENCH.Stat"));
}

template <typename Make, typename Source>
void repeat(const std::string& name, Make make, Source source) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        for (auto _ : state) benchmark::DoNotOptimize(make(source));
    });
}

template <typename Declared, typename T>
void registerRecord(const std::string& name, const T& r) {
    const auto add = [&](const char* what, auto run) {
        benchmark::RegisterBenchmark((name + what).c_str(),
                                     [=](benchmark::State& state) { run(state, r); });
    };
    add("/encode/compact", [](auto& s, const T& x) { encodeCompact(s, x); });
    add("/encode/object", [](auto& s, const T& x) { encodeObject<Declared>(s, x); });
    add("/encode/protobuf", [](auto& s, const T& x) { encodeProtobuf(s, x); });
    add("/encode/msgpack", [](auto& s, const T& x) { encodeMsgpack(s, x); });
    add("/decode/compact", [](auto& s, const T& x) { decodeCompact(s, x); });
    add("/decode/object", [](auto& s, const T& x) { decodeObject<Declared>(s, x); });
    add("/decode/protobuf", [](auto& s, const T& x) { decodeProtobuf(s, x); });
    add("/decode/msgpack", [](auto& s, const T& x) { decodeMsgpack(s, x); });
}

void registerPacket(const Stat& stat) {
    const std::string name = "packet";
    const auto declared = declaredOf<DeclaredStat>(stat);
    const auto proto = protoOf(stat);
    repeat(name + "/encode/compact", packetCompact, stat);
    repeat(name + "/encode/object", packetObject, declared);
    repeat(name + "/encode/protobuf", packetProtobuf, proto);
    repeat(name + "/encode/msgpack", packetMsgpack, stat);
    repeat(name + "/decode/compact", statOfCompact, packetCompact(stat));
    repeat(name + "/decode/object", statOfObject, packetObject(declared));
    repeat(name + "/decode/protobuf", statOfProtobuf, packetProtobuf(proto));
    repeat(name + "/decode/msgpack", statOfMsgpack, packetMsgpack(stat));
}

/// Keeps the fastest repetition of each benchmark and prints the ratios at the end: what a machine
/// with other work on it does least to.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration) continue;
            const double time = run.GetAdjustedCPUTime();
            const auto [place, first] = fastest_.try_emplace(run.run_name.function_name, time);
            if (!first) place->second = std::min(place->second, time);
        }
    }

    void Finalize() override {
        for (const char* what : {"record/encode", "record/decode", "map/encode", "map/decode",
                                 "packet/encode", "packet/decode"}) {
            const auto time = [&](const char* codec) {
                return fastest_[std::string(what) + "/" + codec];
            };
            const double compact = time("compact");
            std::printf(
                "%-14s compact %7.0f ns   protobuf/compact %5.2f   msgpack/compact %5.2f   "
                "object/compact %5.2f\n",
                what, compact, time("protobuf") / compact, time("msgpack") / compact,
                time("object") / compact);
        }
    }

 private:
    std::map<std::string, double> fastest_;
};

}  // namespace
}  // namespace vorla::bench

int main(int argc, char** argv) {
    using namespace vorla::bench;
    benchmark::Initialize(&argc, argv);
    registerRecord<DeclaredRecord>("record", Record());
    registerRecord<DeclaredPairs>("map", samplePairs());
    registerPacket(sampleStat());
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
