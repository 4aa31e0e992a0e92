#include <atomic>
#include <set>
#include <thread>

#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"
#include "tests/NEX/NEX+PAK/SerializationPAK/Buoy.h"

namespace vorla::test {
namespace {

constexpr int kThreads = 8;

template <typename Work>
void onAllThreads(Work work) {
    std::atomic<int> waiting{kThreads};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            --waiting;
            while (waiting > 0) std::this_thread::yield();
            work(i);
        });
    }
    for (auto& thread : threads) thread.join();
}

TEST(PakThreads, RequestIdsStartAt1000AndAreUnique) {
    constexpr int kEach = 5000;
    const int64_t first = RequestPacket::generateRequestID().int64Value();
    EXPECT_EQ(first, 1000) << "nothing in this program may take an id before";
    std::vector<std::vector<int64_t>> ids(kThreads);
    onAllThreads([&](int i) {
        for (int n = 0; n < kEach; ++n)
            ids[static_cast<size_t>(i)].push_back(RequestPacket::generateRequestID().int64Value());
    });
    std::set<int64_t> all;
    for (const auto& each : ids) all.insert(each.begin(), each.end());
    ASSERT_EQ(all.size(), size_t{kThreads} * kEach);
    EXPECT_EQ(*all.begin(), first + 1);
    EXPECT_EQ(*all.rbegin(), first + kThreads * kEach);
    // Each thread's own ids rise: the counter never steps back.
    for (const auto& each : ids) EXPECT_TRUE(std::ranges::is_sorted(each));
}

// A program of its own: nothing has been parsed or cached yet.
TEST(PakThreads, PackTheSameClassesFromAColdStart) {
    std::vector<PakData> bytes(kThreads);
    onAllThreads([&](int i) {
        auto packet = ZenPacket::packet();
        packet->setIRequestId(1);
        packet->putObjectAttr("buoy",
                              pakObjectFromData<DeclaredBuoy>(encoded(BuoyYard(3).make(2))));
        bytes[static_cast<size_t>(i)] = packet->toData();
        auto back = pakObjectFromData<ZenPacket>(bytes[static_cast<size_t>(i)]);
        EXPECT_NE(back->getObjectAttr("buoy", DeclaredBuoy::pakClass()), nullptr);
    });
    for (const PakData& each : bytes) EXPECT_EQ(each, bytes[0]);
}

}  // namespace
}  // namespace vorla::test
