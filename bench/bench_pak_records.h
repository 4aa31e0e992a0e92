#pragma once

#include <benchmark/benchmark.h>

#include <msgpack.hpp>

#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"

namespace vorla::bench {

/// Six integers of several widths, a double, two strings, eight integers. The same structure serves
/// the compact codec and msgpack; the other two have theirs below and in bench_pak.proto.
struct Record {
    int32_t a = 7;
    int32_t b = 300;
    int32_t c = 0;
    int64_t d = 1700000000000;
    int32_t e = -70000;
    int32_t f = 12;
    double degrees = -12.75;
    std::string name = "Sonnblick";
    std::string note = "wind from the west, clear sky";
    std::vector<int32_t> waves = {1, 200, 30000, 4000000, -5, 600, 70, 8};
    MSGPACK_DEFINE(a, b, c, d, e, f, degrees, name, note, waves)

    void writeTo(analyticspak::PakOutputStream& s) const {
        s.write(a, 0);
        s.write(b, 1);
        s.write(c, 2);
        s.write(d, 3);
        s.write(e, 4);
        s.write(f, 5);
        s.write(degrees, 6);
        s.write(name, 7);
        s.write(note, 8);
        s.write(waves, 9);
    }
    void readFrom(analyticspak::PakInputStream& s) {
        s.read(a, 0);
        s.read(b, 1);
        s.read(c, 2);
        s.read(d, 3);
        s.read(e, 4);
        s.read(f, 5);
        s.read(degrees, 6);
        s.read(name, 7);
        s.read(note, 8);
        s.read(waves, 9);
    }
};

class DeclaredRecord : public PakObjectV2 {
    PAK_OBJECT_V2(DeclaredRecord, "BENCH.Record")
    PAK_FIELD(int32_t, pakv2_p_0_r_a, a)
    PAK_FIELD(int32_t, pakv2_p_1_r_b, b)
    PAK_FIELD(int32_t, pakv2_p_2_r_c, c)
    PAK_FIELD(int64_t, pakv2_p_3_r_d, d)
    PAK_FIELD(int32_t, pakv2_p_4_r_e, e)
    PAK_FIELD(int32_t, pakv2_p_5_r_f, f)
    PAK_FIELD(double, pakv2_p_6_r_degrees, degrees)
    PAK_FIELD(std::string, pakv2_p_7_r_name, name)
    PAK_FIELD(std::string, pakv2_p_8_r_note, note)
    PAK_FIELD(PakArray, pakv2_p_9_r_waves__b0x9i_VONSNumber, waves)
};

struct Pairs {
    std::map<std::string, std::string> pairs;
    MSGPACK_DEFINE(pairs)
    void writeTo(analyticspak::PakOutputStream& s) const { s.write(pairs, 0); }
    void readFrom(analyticspak::PakInputStream& s) { s.read(pairs, 0); }
};

class DeclaredPairs : public PakObjectV2 {
    PAK_OBJECT_V2(DeclaredPairs, "BENCH.Pairs")
    PAK_FIELD(PakDictionary, pakv2_p_0_r_pairs__b0x9i_M09ONSStringONSString, pairs)
};

struct StatComm {
    std::string guid = "12345678-9ABC-DEF0-1234-56789ABCDEF0", token;
    int64_t version = int64_t{1} << 48;
    std::string user;
    int64_t supply = 100;
    int64_t code = 0;
    std::string system = "12.7.1";
    int32_t language = 1, digit = 64;
    std::string kernel;
    MSGPACK_DEFINE(guid, token, version, user, supply, code, system, language, digit, kernel)

    void writeTo(analyticspak::PakOutputStream& s) const {
        s.write(guid, 0);
        s.write(token, 1);
        s.write(version, 2);
        s.write(user, 3);
        s.write(supply, 4);
        s.write(code, 5);
        s.write(system, 6);
        s.write(language, 7);
        s.write(digit, 8);
        s.write(kernel, 9);
    }
    void readFrom(analyticspak::PakInputStream& s) {
        s.read(guid, 0);
        s.read(token, 1);
        s.read(version, 2);
        s.read(user, 3);
        s.read(supply, 4);
        s.read(code, 5);
        s.read(system, 6);
        s.read(language, 7);
        s.read(digit, 8);
        s.read(kernel, 9);
    }
};

struct StatEntry {
    int32_t protocol = 8130, key = 0, first = 0, second = 0, third = 0;
    std::string text = {}, more = {}, rest = {};
    MSGPACK_DEFINE(protocol, key, first, second, third, text, more, rest)

    void writeTo(analyticspak::PakOutputStream& s) const {
        s.write(protocol, 0);
        s.write(key, 1);
        s.write(first, 2);
        s.write(second, 3);
        s.write(third, 4);
        s.write(text, 5);
        s.write(more, 6);
        s.write(rest, 7);
    }
    void readFrom(analyticspak::PakInputStream& s) {
        s.read(protocol, 0);
        s.read(key, 1);
        s.read(first, 2);
        s.read(second, 3);
        s.read(third, 4);
        s.read(text, 5);
        s.read(more, 6);
        s.read(rest, 7);
    }
};

struct Stat {
    static constexpr const char* structName = "BENCH.Stat";
    StatComm comm;
    std::vector<StatEntry> entries;
    MSGPACK_DEFINE(comm, entries)
    void writeTo(analyticspak::PakOutputStream& s) const {
        s.write(comm, 0);
        s.write(entries, 21);
    }
    void readFrom(analyticspak::PakInputStream& s) {
        s.read(comm, 0);
        s.read(entries, 21);
    }
};

class DeclaredStatComm : public PakObjectV2 {
    PAK_OBJECT_V2(DeclaredStatComm, "BENCH.StatComm")
    PAK_FIELD(std::string, pakv2_p_0_r_guid, guid)
    PAK_FIELD(std::string, pakv2_p_1_r_token, token)
    PAK_FIELD(int64_t, pakv2_p_2_r_version, version)
    PAK_FIELD(std::string, pakv2_p_3_o_user, user)
    PAK_FIELD(uint32_t, pakv2_p_4_r_supply, supply)
    PAK_FIELD(int64_t, pakv2_p_5_r_code, code)
    PAK_FIELD(std::string, pakv2_p_6_r_system, system)
    PAK_FIELD(uint32_t, pakv2_p_7_o_language, language)
    PAK_FIELD(uint16_t, pakv2_p_8_o_digit, digit)
    PAK_FIELD(std::string, pakv2_p_9_o_kernel, kernel)
};

class DeclaredStatEntry : public PakObjectV2 {
    PAK_OBJECT_V2(DeclaredStatEntry, "BENCH.StatEntry")
    PAK_FIELD(uint32_t, pakv2_p_0_r_protocol, protocol)
    PAK_FIELD(uint32_t, pakv2_p_1_r_key, key)
    PAK_FIELD(uint32_t, pakv2_p_2_o_first, first)
    PAK_FIELD(uint32_t, pakv2_p_3_o_second, second)
    PAK_FIELD(uint32_t, pakv2_p_4_o_third, third)
    PAK_FIELD(std::string, pakv2_p_5_o_text, text)
    PAK_FIELD(std::string, pakv2_p_6_o_more, more)
    PAK_FIELD(std::string, pakv2_p_7_o_rest, rest)
};

class DeclaredStat : public PakObjectV2 {
    PAK_OBJECT_V2(DeclaredStat, "BENCH.Stat")
    PAK_FIELD(std::shared_ptr<DeclaredStatComm>, pakv2_p_0_r_comm, comm)
    PAK_FIELD(PakArray, pakv2_p_21_o_entries__b0x9i_VODeclaredStatEntry, entries)
};

/// Lists as long as they come: numbers, texts and records.
struct Lists {
    std::vector<int32_t> numbers;
    std::vector<std::string> texts;
    std::vector<StatEntry> entries;
    MSGPACK_DEFINE(numbers, texts, entries)
    void writeTo(analyticspak::PakOutputStream& s) const {
        s.write(numbers, 0);
        s.write(texts, 1);
        s.write(entries, 2);
    }
    void readFrom(analyticspak::PakInputStream& s) {
        s.read(numbers, 0);
        s.read(texts, 1);
        s.read(entries, 2);
    }
};

class DeclaredLists : public PakObjectV2 {
    PAK_OBJECT_V2(DeclaredLists, "BENCH.Lists")
    PAK_FIELD(PakArray, pakv2_p_0_r_numbers__b0x9i_VONSNumber, numbers)
    PAK_FIELD(PakArray, pakv2_p_1_r_texts__b0x9i_VONSString, texts)
    PAK_FIELD(PakArray, pakv2_p_2_r_entries__b0x9i_VODeclaredStatEntry, entries)
};

inline Pairs samplePairs() {
    Pairs made;
    for (int i = 0; i < 20; ++i)
        made.pairs["measure-" + std::to_string(i)] = "value of measure " + std::to_string(i * i);
    return made;
}

inline Stat sampleStat() {
    Stat made;
    for (int i = 0; i < 30; ++i)
        made.entries.push_back(
            {.key = 1000 + i, .first = i * i * 10, .text = i % 10 ? "" : "text"});
    return made;
}

inline Lists sampleLists() {
    Lists made;
    for (int i = 0; i < 1000; ++i) made.numbers.push_back(i * i * (i % 3 - 1));
    for (int i = 0; i < 300; ++i) made.texts.push_back("text " + std::to_string(i * i));
    for (int i = 0; i < 300; ++i)
        made.entries.push_back({.key = 1000 + i, .first = i * i, .text = i % 10 ? "" : "text"});
    return made;
}

/// A call into which everything is inlined, whatever a serializer asks for itself, and which is not
/// inlined into the loop that measures it: otherwise the ratios would measure inlining alone.
template <typename Call, typename... Arguments>
[[gnu::noinline, gnu::flatten]] auto outOfLine(Call call, Arguments&... arguments) {
    return call(arguments...);
}

template <typename Make, typename Source>
void repeat(const std::string& name, Make make, Source source) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        for (auto _ : state) benchmark::DoNotOptimize(outOfLine(make, source));
    });
}

template <typename Run, typename T>
void add(const std::string& name, Run run, const T& record) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) { run(state, record); });
}

// Each serializer is measured in a source file of its own, compiled in the same way.
void registerCompact();
void registerObject();
void registerProtobuf();
void registerMsgpack();

}  // namespace vorla::bench
