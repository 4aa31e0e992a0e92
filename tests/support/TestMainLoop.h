#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/base/MainQueue.h"
#include "tests/support/waiting.h"

namespace vorla::test {

/// A main loop without a toolkit: the thread that made it runs posted tasks while it waits for
/// something. Delays are not kept.
class TestMainLoop {
 public:
    TestMainLoop() : backend_(std::make_shared<Backend>()) { MainQueue::setBackend(backend_); }
    ~TestMainLoop() { MainQueue::setBackend(nullptr); }
    TestMainLoop(const TestMainLoop&) = delete;
    TestMainLoop& operator=(const TestMainLoop&) = delete;

    /// Runs until the condition holds; false when it did not in time.
    template <typename Condition>
    bool runUntil(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
        return eventually(condition, static_cast<int>(limit.count()),
                          [this] { backend_->runOne(std::chrono::milliseconds(2)); });
    }

 private:
    struct Backend : MainQueue::Backend {
        void post(std::chrono::milliseconds, MainQueue::Task task) override {
            const std::lock_guard lock(mutex);
            tasks.push_back(std::move(task));
            posted.notify_one();
        }
        void runOne(std::chrono::milliseconds patience) {
            MainQueue::Task task;
            {
                std::unique_lock lock(mutex);
                if (!posted.wait_for(lock, patience, [this] { return !tasks.empty(); })) return;
                task = std::move(tasks.front());
                tasks.pop_front();
            }
            task();
        }
        std::mutex mutex;
        std::condition_variable posted;
        std::deque<MainQueue::Task> tasks;
    };

    std::shared_ptr<Backend> backend_;
};

}  // namespace vorla::test
