#include "platform/base/MainQueue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using std::chrono::milliseconds;
using vorla::MainQueue;

/// Keeps what it is given until the test runs it, as a main loop would.
class ManualLoop : public MainQueue::Backend {
 public:
    void post(milliseconds delay, MainQueue::Task task) override {
        delays.push_back(delay);
        tasks.push_back(std::move(task));
        if (auto act = std::exchange(onPost, nullptr)) act();
    }
    void runAll() {
        for (auto& task : std::exchange(tasks, {})) task();
    }
    std::vector<milliseconds> delays;
    std::vector<MainQueue::Task> tasks;
    std::function<void()> onPost;
};

class MainQueueTest : public testing::Test {
 protected:
    ~MainQueueTest() override { MainQueue::setBackend(nullptr); }
    MainQueue::Task note(char mark) {
        return [this, mark] { order_ += mark; };
    }
    std::shared_ptr<ManualLoop> loop_ = std::make_shared<ManualLoop>();
    std::string order_;
};

TEST_F(MainQueueTest, NeverRunsInLineAndKeepsTheOrder) {
    MainQueue::post(note('1'));
    MainQueue::postAfter(milliseconds(20), note('2'));
    MainQueue::setBackend(loop_);
    MainQueue::post(note('3'));
    EXPECT_EQ(order_, "");
    loop_->runAll();
    EXPECT_EQ(order_, "123");
    EXPECT_EQ(loop_->delays, (std::vector{milliseconds(0), milliseconds(20), milliseconds(0)}));
}

TEST_F(MainQueueTest, ATaskPostedDuringTheHandOverDoesNotOvertake) {
    MainQueue::post(note('1'));
    MainQueue::post(note('2'));
    loop_->onPost = [this] { MainQueue::post(note('3')); };
    MainQueue::setBackend(loop_);
    loop_->runAll();
    EXPECT_EQ(order_, "123");
}

}  // namespace
