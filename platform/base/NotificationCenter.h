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
