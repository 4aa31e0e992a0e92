#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vorla {

/// A named broadcast under way. `object` is what the poster attached, empty for none.
struct Notification {
    std::string name;
    std::any object;

    /// The attached object as a T, or `fallback` when there is none or it is of another type.
    template <typename T>
    [[nodiscard]] T objectOr(T fallback) const {
        const T* value = std::any_cast<T>(&object);
        return value ? *value : fallback;
    }
};

/// Process-wide named broadcasts.
///
/// Posting calls every observer of that name at once, on the posting thread, in the order in which
/// they were added. Observers may add and remove observers (themselves too) and post again while
/// they are called; one that was removed is not called any more, one that was added hears the next
/// posting. Any thread may use it, observers then run on the poster's.
class NotificationCenter {
 public:
    using Handler = std::function<void(const Notification&)>;

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    static NotificationCenter& defaultCenter();

    /// Returns a ticket for `removeObserver`. Prefer `NotificationObservers`, which keeps it.
    uint64_t addObserver(std::string_view name, Handler handler);
    void removeObserver(uint64_t ticket);

    void post(std::string_view name, std::any object = {});

 private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The user turns to the program: one of its windows has the keyboard. Main thread.
inline constexpr const char* NSApplicationWillBecomeActiveNotification =
    "NSApplicationWillBecomeActiveNotification";
/// The user has left a capture for another program: by a key of the window manager's or a press,
/// or because that program keeps the keyboard although the key panel asked for it back many times.
/// Ends the capture. Main thread.
inline constexpr const char* NSApplicationWillResignActiveNotification =
    "NSApplicationWillResignActiveNotification";
/// None of the program's windows has the keyboard any more. A capture goes on: it starts like that
/// when the host hides its window, and takes the keyboard back when it is stolen. Main thread.
inline constexpr const char* NSApplicationDidResignActiveNotification =
    "NSApplicationDidResignActiveNotification";

/// The observations of one object: they end with it, or with `clear`.
class NotificationObservers {
 public:
    NotificationObservers() = default;
    ~NotificationObservers() { clear(); }
    NotificationObservers(const NotificationObservers&) = delete;
    NotificationObservers& operator=(const NotificationObservers&) = delete;

    /// Observes a broadcast of the default centre.
    void observe(std::string_view name, NotificationCenter::Handler handler);
    void clear();

 private:
    std::vector<uint64_t> tickets_;
};

}  // namespace vorla
