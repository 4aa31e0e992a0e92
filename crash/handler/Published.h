#pragma once

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

namespace vorla::crash {

/// How many read published state at present: the crash handler, which never says that it is done,
/// and whoever reports a caught error. Publishers then leave the old state alone.
inline std::atomic<int> publishedStateUsers{0};

/// State that ordinary threads replace as a whole and the crash handler reads without a lock.
///
/// Of a publisher's exchange and look at the number, and the reader's counting itself and look
/// at the state, one comes first: either the reader finds the new state, or the publisher finds
/// the reader and keeps the old one alive.
template <typename T>
class Published {
 public:
    /// Publishers exclude one another themselves.
    void publish(std::unique_ptr<const T> next) {
        replaced_.emplace_back(state_.exchange(next.release()));
        if (publishedStateUsers.load() == 0) replaced_.clear();
    }
    void publish(T next) { publish(std::make_unique<const T>(std::move(next))); }

    /// The present state, or null. For readers that have counted themselves, and for those who
    /// keep publishers out.
    [[nodiscard]] const T* get() const { return state_.load(); }

 private:
    std::atomic<const T*> state_{nullptr};
    std::vector<std::unique_ptr<const T>> replaced_;
};

}  // namespace vorla::crash
