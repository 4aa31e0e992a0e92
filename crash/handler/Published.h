#pragma once

#include <atomic>
#include <memory>

namespace vorla::crash {

/// Set from the moment when a crash begins to read published state. Never cleared but for a test
/// or a process that outlives it: whoever publishes then leaves the old state alone.
inline std::atomic<bool> publishedStateInUse{false};

/// State that ordinary threads replace as a whole and the crash handler reads without a lock.
///
/// Of a publisher's exchange and look at the flag, and the handler's setting of the flag and look
/// at the state, one comes first: either the handler finds the new state, or the publisher finds
/// the flag and keeps the old one alive.
template <typename T>
class Published {
 public:
    /// Publishers exclude one another themselves.
    void publish(std::unique_ptr<const T> next) {
        std::unique_ptr<const T> old(state_.exchange(next.release()));
        if (publishedStateInUse.load()) (void)old.release();
    }
    void publish(T next) { publish(std::make_unique<const T>(std::move(next))); }

    /// The present state, or null. For the handler, which has set the flag, and for those who keep
    /// publishers out.
    [[nodiscard]] const T* get() const { return state_.load(); }

 private:
    std::atomic<const T*> state_{nullptr};
};

}  // namespace vorla::crash
