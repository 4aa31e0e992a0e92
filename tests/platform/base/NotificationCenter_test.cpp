#include "platform/base/NotificationCenter.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

namespace {

using vorla::Notification;
using vorla::NotificationCenter;
using vorla::NotificationObservers;

class Broadcasts : public testing::Test {
 protected:
    NotificationCenter center_;
    std::string heard_;

    NotificationCenter::Handler note(char mark) {
        return [this, mark](const Notification&) { heard_ += mark; };
    }
};

TEST_F(Broadcasts, ReachTheObserversOfTheNameInOrderOfAdding) {
    center_.addObserver("x", note('a'));
    center_.addObserver("y", note('-'));
    const auto ticket = center_.addObserver("x", note('b'));
    center_.addObserver("x", note('c'));
    center_.post("x");
    center_.post("nobody");
    center_.removeObserver(ticket);
    center_.removeObserver(ticket);
    center_.post("x");
    EXPECT_EQ(heard_, "abcac");
}

TEST_F(Broadcasts, ObserversMayChangeTheListWhileTheyAreCalled) {
    uint64_t self = 0;
    uint64_t later = 0;
    self = center_.addObserver("x", [&](const Notification&) {
        heard_ += '1';
        center_.removeObserver(self);
        center_.removeObserver(later);
        center_.addObserver("x", note('n'));
    });
    later = center_.addObserver("x", note('!'));
    center_.addObserver("x", note('2'));
    center_.post("x");
    EXPECT_EQ(heard_, "12");
    center_.post("x");
    EXPECT_EQ(heard_, "122n");
}

TEST_F(Broadcasts, AHandlerOutlivesItsOwnRemoval) {
    auto owned = std::make_shared<std::string>("alive");
    const std::weak_ptr<std::string> watch = owned;
    uint64_t ticket = 0;
    ticket = center_.addObserver("x", [&, owned = std::move(owned)](const Notification&) {
        center_.removeObserver(ticket);
        heard_ = *owned;
    });
    center_.post("x");
    EXPECT_EQ(heard_, "alive");
    EXPECT_TRUE(watch.expired());
}

TEST(NotificationObserversOfAnObject, EndWithItAlsoFromInsideItsOwnHandler) {
    std::string heard;
    auto observers = std::make_unique<NotificationObservers>();
    observers->observe("ends-with-object", [&](const Notification&) {
        heard += 'a';
        observers.reset();
    });
    observers->observe("ends-with-object", [&](const Notification&) { heard += 'b'; });
    NotificationCenter::defaultCenter().post("ends-with-object");
    NotificationCenter::defaultCenter().post("ends-with-object");
    EXPECT_EQ(heard, "a");
}

TEST_F(Broadcasts, ThreadsMayPostWhileOthersAddAndRemove) {
    std::jthread poster([this](const std::stop_token& stop) {
        while (!stop.stop_requested()) center_.post("x");
    });
    for (int i = 0; i < 2000; ++i)
        center_.removeObserver(center_.addObserver("x", [](const Notification&) {}));
    poster.request_stop();
    poster.join();
    center_.addObserver("x", note('e'));
    center_.post("x");
    EXPECT_EQ(heard_, "e");
}

}  // namespace
