// Hostile bytes of 100 KB, and of 200 KB to see that the time only doubles, through every reader.
// The yardstick of the same run is a well-formed list of strings of that size.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "fuzz/FuzzStructures.h"

namespace {

using vorla::fuzz::FuzzNode;

struct Input {
    const char* name;
    PakData start;
    PakData repeated;
};

const Input kInputs[] = {
    {"yardstick: strings",
     {0x09, 0x02, 0x00, 0x00, 0x10, 0x00},
     {0x06, 0x05, 'h', 'e', 'l', 'l', 'o'}},
    {"structures in structures", {}, {0x0A}},
    {"lists in lists", {}, {0x09, 0x00, 0x01}},
    {"maps in maps", {}, {0x08, 0x00, 0x01, 0x0C, 0x18, 0x00, 0x01, 0x0C}},
    {"skipped structures", {0x0A, 0x10, 0x01}, {0x2A}},
    {"nodes in nodes", {}, {0x10, 0x01, 0xFA, 0x10}},
    {"lists of nodes", {}, {0x10, 0x01, 0xF9, 0x11, 0x02, 0x7F, 0xFF, 0xFF, 0xFF, 0x0A}},
    {"broken nodes in a list",
     {0x10, 0x01, 0xF9, 0x11, 0x02, 0x7F, 0xFF, 0xFF, 0xFF},
     {0x0A, 0x10, 0x01, 0x3E, 0x0B}},
    {"zeros in a list", {0x09, 0x02, 0x7F, 0xFF, 0xFF, 0xFF}, {0x0C}},
    {"undefined types", {}, {0x0E}},
};

PakData made(const Input& input, size_t size) {
    PakData bytes = input.start;
    while (bytes.size() < size)
        bytes.insert(bytes.end(), input.repeated.begin(), input.repeated.end());
    return bytes;
}

struct CompactNode {
    int64_t lTime = 0;
    float fWind = 0;
    std::vector<std::string> vNotes;
    std::vector<CompactNode> vNear;
    void readFrom(analyticspak::PakInputStream& stream) {
        stream.read(lTime, 1, true);
        stream.read(fWind, 2, false);
        stream.read(vNotes, 7, false);
        stream.read(vNear, 17, false);
    }
};

const struct {
    const char* name;
    std::function<void(const PakData&)> read;
} kReaders[] = {
    {"declared", [](const PakData& bytes) { FuzzNode().fromData(bytes); }},
    {"strict list",
     [](const PakData& bytes) {
         (void)PakInputStream(std::span(bytes)).readArray(0, false, PakClass::stringClass());
     }},
    {"strict struct",
     [](const PakData& bytes) {
         PakInputStream(std::span(bytes)).readObject(0, false, FuzzNode::pakClass());
     }},
    {"compact",
     [](const PakData& bytes) {
         analyticspak::PakInputStream stream(bytes);
         CompactNode().readFrom(stream);
     }},
    {"compact skip", [](const PakData& bytes) { analyticspak::PakInputStream(bytes).skipField(); }},
};

double milliseconds(const std::function<void(const PakData&)>& read, const PakData& bytes) {
    double fastest = 1e9;
    for (int i = 0; i < 5; ++i) {
        const auto start = std::chrono::steady_clock::now();
        (void)vorla::fuzz::succeeds([&] { read(bytes); });
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - start;
        fastest = std::min(fastest, time.count());
    }
    return fastest;
}

}  // namespace

int main() {
    vorla::fuzz::throwOnFailedChecks();
    // The compact reader prints on standard output what it cannot pass over; the table does not
    // belong among that.
    if (!std::freopen("/dev/null", "w", stdout)) return 1;
    std::fprintf(stderr, "%-26s", "100 KB, ms (x at 200 KB)");
    for (const auto& reader : kReaders) std::fprintf(stderr, "%22s", reader.name);
    for (const Input& input : kInputs) {
        std::fprintf(stderr, "\n%-26s", input.name);
        for (const auto& reader : kReaders) {
            const double once = milliseconds(reader.read, made(input, 100000));
            const double twice = milliseconds(reader.read, made(input, 200000));
            std::fprintf(stderr, "%14.3f (%4.1f)", once, twice / once);
        }
    }
    std::fprintf(stderr, "\n");
    return 0;
}
