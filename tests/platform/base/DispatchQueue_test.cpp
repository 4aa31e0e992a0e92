#include "platform/base/DispatchQueue.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <future>
#include <set>
#include <thread>
#include <vector>

namespace {

using vorla::DispatchQueue;

TEST(DispatchQueue, ASerialQueueRunsOneTaskAfterTheOtherOnOneThread) {
    DispatchQueue queue("test - a queue with a long name");
    std::vector<int> order;
    std::set<std::thread::id> threads;
    std::promise<std::string> named;
    for (int i = 0; i < 1000; ++i)
        queue.async([&, i] {
            order.push_back(i);
            threads.insert(std::this_thread::get_id());
        });
    queue.async([&] {
        char name[16] = {};
        pthread_getname_np(pthread_self(), name, sizeof name);
        named.set_value(name);
    });
    EXPECT_EQ(named.get_future().get(), "test - a queue ");
    ASSERT_EQ(order.size(), 1000U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_EQ(threads.size(), 1U);
    EXPECT_EQ(threads.count(std::this_thread::get_id()), 0U);
}

TEST(DispatchQueue, EndingAQueueFinishesTheRunningTaskAndDropsTheRest) {
    std::atomic<int> finished = 0;
    std::promise<void> started;
    {
        DispatchQueue queue("ends");
        queue.async([&] {
            started.set_value();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            ++finished;
        });
        for (int i = 0; i < 100; ++i) queue.async([&] { finished += 100; });
        started.get_future().wait();
    }
    EXPECT_EQ(finished, 1);
}

TEST(DispatchQueue, ItsThreadsTakeNoSignalsOfTheHost) {
    std::promise<sigset_t> mask;
    DispatchQueue queue("signals");
    queue.async([&] {
        sigset_t own;
        pthread_sigmask(SIG_SETMASK, nullptr, &own);
        mask.set_value(own);
    });
    const sigset_t blocked = mask.get_future().get();
    for (const int signal : {SIGCHLD, SIGTERM, SIGUSR1, SIGPIPE})
        EXPECT_EQ(sigismember(&blocked, signal), 1) << signal;
    for (const int signal : {SIGSEGV, SIGABRT, SIGFPE})
        EXPECT_EQ(sigismember(&blocked, signal), 0) << signal;
    sigset_t mine;
    pthread_sigmask(SIG_SETMASK, nullptr, &mine);
    EXPECT_EQ(sigismember(&mine, SIGTERM), 0);
}

}  // namespace
