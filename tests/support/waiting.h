#pragma once

#include <chrono>
#include <thread>

namespace vorla::test {

/// Waits for something that others bring about, letting `pass` spend the time between two looks;
/// false when it has not come in time.
template <typename Condition, typename Pass>
bool eventually(Condition condition, int milliseconds, Pass pass) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    while (!condition()) {
        if (Clock::now() > end) return false;
        pass();
    }
    return true;
}

template <typename Condition>
bool eventually(Condition condition, int milliseconds = 5000) {
    return eventually(condition, milliseconds,
                      [] { std::this_thread::sleep_for(std::chrono::milliseconds(5)); });
}

}  // namespace vorla::test
