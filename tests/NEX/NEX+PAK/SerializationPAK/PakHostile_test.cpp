#include <atomic>
#include <cstdlib>
#include <new>

#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"
#include "tests/NEX/NEX+PAK/SerializationPAK/Buoy.h"

namespace {

// Bytes in use through operator new, and their highest number since the last reset.
std::atomic<size_t> inUse{0};
std::atomic<size_t> peak{0};
constexpr size_t kPrefix = 16;

}  // namespace

void* operator new(size_t size) {
    auto* block = static_cast<size_t*>(std::malloc(size + kPrefix));
    if (!block) throw std::bad_alloc();
    *block = size;
    const size_t now = inUse += size;
    if (now > peak) peak = now;
    return reinterpret_cast<char*>(block) + kPrefix;
}
void operator delete(void* memory) noexcept {
    if (!memory) return;
    auto* block = reinterpret_cast<size_t*>(static_cast<char*>(memory) - kPrefix);
    inUse -= *block;
    std::free(block);
}
void operator delete(void* memory, size_t) noexcept {
    operator delete(memory);
}

namespace vorla::test {
namespace {

struct Hostile {
    const char* name;
    PakData bytes;
};

/// Everything that reads bytes, over the same bytes.
const struct {
    const char* name;
    std::function<void(const PakData&)> read;
} kReaders[] = {
    {"declared structure", [](const PakData& bytes) { DeclaredBuoy().fromData(bytes); }},
    {"strict list of strings",
     [](const PakData& bytes) {
         (void)PakInputStream(std::span(bytes)).readArray(0, false, PakClass::stringClass());
     }},
    {"strict list of numbers",
     [](const PakData& bytes) {
         (void)PakInputStream(std::span(bytes)).readArray(0, false, PakClass::numberClass());
     }},
    {"strict map",
     [](const PakData& bytes) {
         const auto pair = mapOf(PakClass::stringClass(), PakClass::stringClass());
         (void)PakInputStream(std::span(bytes)).readDictionary(0, false, pair);
     }},
    {"strict structure",
     [](const PakData& bytes) {
         PakInputStream(std::span(bytes)).readObject(0, false, DeclaredBuoy::pakClass());
     }},
    {"compact structure", [](const PakData& bytes) { decoded(bytes); }},
    {"compact list of strings",
     [](const PakData& bytes) {
         std::vector<std::string> list;
         analyticspak::PakInputStream(bytes).read(list, 0, false);
     }},
    {"compact list of integers",
     [](const PakData& bytes) {
         std::vector<int32_t> list;
         analyticspak::PakInputStream(bytes).read(list, 0, false);
     }},
    {"compact list of buoys",
     [](const PakData& bytes) {
         std::vector<Buoy> list;
         analyticspak::PakInputStream(bytes).read(list, 0, false);
     }},
    {"strict list of buoys",
     [](const PakData& bytes) {
         (void)PakInputStream(std::span(bytes)).readArray(0, false, DeclaredBuoy::pakClass());
     }},
    {"compact map",
     [](const PakData& bytes) {
         std::map<std::string, std::string> map;
         analyticspak::PakInputStream(bytes).read(map, 0, false);
     }},
    {"compact skip", [](const PakData& bytes) { analyticspak::PakInputStream(bytes).skipField(); }},
    {"compact seek",
     [](const PakData& bytes) { analyticspak::PakInputStream(bytes).skipToTag(255); }},
    {"compact packet",
     [](const PakData& bytes) { analyticsnex::ZenPacket().decode(bytes.data(), bytes.size()); }},
    {"packet", [](const PakData& bytes) { ZenPacket().fromData(bytes); }},
};

/// Runs all readers; the memory that they take must stay in proportion to the bytes.
void expectHarmless(const Hostile& input) {
    for (const auto& [name, read] : kReaders) {
        const size_t before = inUse;
        peak = before;
        (void)outcomeOf([&] { read(input.bytes); });
        const size_t taken = peak - before;
        EXPECT_LE(taken, 65536 + 16 * input.bytes.size()) << name << " over " << input.name;
    }
}

/// Keeps the compact reader's warnings, of which there are thousands, out of the log.
class PakHostile : public testing::Test {
 protected:
    void SetUp() override { testing::internal::CaptureStdout(); }
    void TearDown() override {
        const std::string output = testing::internal::GetCapturedStdout();
        if (HasFailure()) std::fwrite(output.data(), 1, output.size(), stdout);
    }
};

std::vector<Hostile> handMade() {
    constexpr size_t kMany = 100000;
    std::vector<Hostile> inputs = {
        {"nothing", {}},
        {"count of the largest number", bytesOf("09 02 7F FF FF FF 0C 0C")},
        // Found by fuzzing: the walk that counts ahead doubled the map's count.
        {"counts of 64 bits inside a long list",
         bytesOf("20 01 F9 65 00 7F 08 03 BD BD FA 15 2C 97 D3 2C 00")},
        {"the same as numbers", bytesOf("09 00 7F 08 03 80 00 00 00 00 00 00 00 00")},
        {"many structures inside one another", repeated("0A", kMany)},
        {"many lists inside one another", repeated("09 00 01", kMany)},
        {"many maps inside one another", repeated("08 00 01 0C 18 00 01 0C", kMany)},
        {"buoys inside one another", repeated("20 01 F9 FF 00 01 0A", kMany / 10)},
        {"empty strings", bytesOf("09 02 00 00 C3 50") + repeated("06 00", 50000)},
        {"buoys of four bytes", bytesOf("09 02 00 00 C3 50") + repeated("0A 2C 0B", 50000)},
        {"empty buoys", bytesOf("09 02 00 00 C3 50") + repeated("0A 0B", 50000)},
        {"zeros", bytesOf("09 02 00 01 86 A0") + repeated("0C", kMany)},
        {"a list cut short", bytesOf("09 02 7F FF FF FF") + repeated("06 01 61", 30000)},
    };
    for (const size_t levels : {size_t{63}, size_t{64}, size_t{65}, kMany}) {
        inputs.push_back({"skipped structures", repeated("1A", levels) + bytesOf("20 01")});
        inputs.push_back({"skipped lists", repeated("19 00 01", levels) + bytesOf("20 01")});
        inputs.push_back({"skipped maps", repeated("18 00 01 0C", levels) + bytesOf("20 01")});
    }
    // Short keys, all different.
    PakData map = bytesOf("08 02 00 00 40 00");
    for (int i = 0; i < 0x4000; ++i)
        map = std::move(map) +
              PakData{0x06, 0x02, static_cast<uint8_t>(i >> 7), static_cast<uint8_t>(i & 0x7F),
                      0x16, 0x00};
    inputs.push_back({"map of short keys", map});
    return inputs;
}

TEST_F(PakHostile, HandMadeInputsAreHarmless) {
    for (const Hostile& input : handMade()) expectHarmless(input);
}

TEST_F(PakHostile, NestingIsBoundedAtItsLevels) {
    const auto outcome = [](size_t levels) {
        return outcomeOf([&] {
            const PakData bytes = repeated("1A", levels) + repeated("0B", levels);
            analyticspak::PakInputStream(bytes).skipField();
        });
    };
    EXPECT_EQ(outcome(64), "done");
    EXPECT_EQ(outcome(65), "raised: nested too deeply, over 64 levels.");
    // The trusting reader passes over any number of unknown levels, and bounds known ones.
    PakInputStream unknown(bytesOf("0A 00 01") + repeated("1A", 100000) + repeated("0B", 100001));
    EXPECT_NE(unknown.readObject(0, true, HandWritten::pakClass()), nullptr);
    const PakData known = repeated("20 01 F9 FF 00 01 0A", 1000);
    EXPECT_EQ(outcomeOf([&] { DeclaredBuoy().fromData(known); }), "0");
}

std::vector<PakData> smallCorpus() {
    analyticsnex::ZenPacket packet;
    packet.sServantName = "harbour";
    packet.sFuncName = "enter";
    packet.context = {{"a", "b"}};
    Buoy buoy{.iNumber = 7, .sName = "Roter Sand", .vPicture = {1, 2}, .vWaves = {1, 300, 0}};
    buoy.vNotes = {"calm", ""};
    buoy.mTags = {{"k", "v"}};
    buoy.mSeries = {{"tide", {1.5}}};
    packet.attributes().put("req", buoy);
    const std::string bytes = packet.encode();
    buoy.vNear = {buoy};
    return {PakData(bytes.begin(), bytes.end()), encoded(buoy)};
}

TEST_F(PakHostile, EveryFlippedBitAndEveryCutIsHarmless) {
    for (const PakData& good : smallCorpus()) {
        for (size_t bit = 0; bit < good.size() * 8; ++bit) {
            PakData flipped = good;
            flipped[bit / 8] ^= static_cast<uint8_t>(1U << bit % 8);
            expectHarmless({"a flipped bit", flipped});
        }
        for (size_t length = 0; length < good.size(); ++length)
            expectHarmless(
                {"a cut", PakData(good.begin(), good.begin() + static_cast<long>(length))});
    }
}

}  // namespace
}  // namespace vorla::test
