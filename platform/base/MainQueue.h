#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace vorla {

/// Work for the host's main loop. Posted work never runs in line, not even when posted from the
/// main thread; pieces posted without a delay run in the order of posting. Any thread may post.
class MainQueue {
 public:
    using Task = std::function<void()>;

    /// What runs the tasks: the toolkit's event loop in a program with a user interface.
    class Backend {
     public:
        virtual ~Backend() = default;
        /// Called on any thread; must run the task on the main thread, later.
        virtual void post(std::chrono::milliseconds delay, Task task) = 0;
    };

    static void post(Task task) { postAfter(std::chrono::milliseconds(0), std::move(task)); }
    static void postAfter(std::chrono::milliseconds delay, Task task);

    /// Plugs the main loop in. Tasks posted before are handed over at once; their delays begin
    /// then.
    static void setBackend(std::shared_ptr<Backend> backend);

    /// Whether a main loop is plugged in. Without one, tasks wait until there is.
    static bool isRunning();
};

}  // namespace vorla
