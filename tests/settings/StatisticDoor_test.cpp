#include "settings/StatisticDoor.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using vorla::fireStatisticEvent;
using vorla::setStatisticReceiver;

TEST(StatisticDoor, AReceiverMayReplaceItselfWhileItRuns) {
    std::vector<int> heard;
    setStatisticReceiver([&](int number) {
        setStatisticReceiver([&](int later) { heard.push_back(-later); });
        heard.push_back(number);
    });
    fireStatisticEvent(7);
    fireStatisticEvent(8);
    setStatisticReceiver({});
    EXPECT_EQ(heard, (std::vector<int>{7, -8}));
}

TEST(StatisticDoor, ThreadsFireWhileTheReceiverChanges) {
    std::atomic<int> heard = 0;
    setStatisticReceiver([&](int) { ++heard; });
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([] {
            for (int n = 0; n < 1000; ++n) fireStatisticEvent(n);
        });
    for (int i = 0; i < 100; ++i) setStatisticReceiver([&](int) { ++heard; });
    threads.clear();
    setStatisticReceiver({});
    EXPECT_EQ(heard, 3000);
}

}  // namespace
