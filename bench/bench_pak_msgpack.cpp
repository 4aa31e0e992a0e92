// Yardstick: msgpack.

#include <map>

#include "bench/bench_pak_records.h"

namespace vorla::bench {
namespace {

template <typename T>
void encodeMsgpack(benchmark::State& state, const T& record) {
    msgpack::sbuffer buffer;
    for (auto _ : state) {
        buffer.clear();
        outOfLine([](auto& to, const T& from) { msgpack::pack(to, from); }, buffer, record);
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
        outOfLine([](T& to, auto& from) { msgpack::unpack(from.data(), from.size())->convert(to); },
                  read, buffer);
        benchmark::DoNotOptimize(read);
    }
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

}  // namespace

void registerMsgpack() {
    add(
        "record/encode/msgpack", [](auto& s, const auto& r) { encodeMsgpack(s, r); }, Record());
    add(
        "record/decode/msgpack", [](auto& s, const auto& r) { decodeMsgpack(s, r); }, Record());
    add(
        "map/encode/msgpack", [](auto& s, const auto& r) { encodeMsgpack(s, r); }, samplePairs());
    add(
        "map/decode/msgpack", [](auto& s, const auto& r) { decodeMsgpack(s, r); }, samplePairs());
    add(
        "list/encode/msgpack", [](auto& s, const auto& r) { encodeMsgpack(s, r); }, sampleLists());
    add(
        "list/decode/msgpack", [](auto& s, const auto& r) { decodeMsgpack(s, r); }, sampleLists());
    repeat(
        "packet/encode/msgpack", [](const auto& x) { return packetMsgpack(x); }, sampleStat());
    repeat(
        "packet/decode/msgpack", [](const auto& x) { return statOfMsgpack(x); },
        packetMsgpack(sampleStat()));
}

}  // namespace vorla::bench
