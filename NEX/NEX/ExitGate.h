#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>

namespace vorla {

/// Keeps background threads away from what the process tears down when it exits: static objects,
/// and the tables of libraries that are freed in exit handlers.
///
/// A thread works inside the gate and waits outside of it. When the process exits, the gate closes:
/// every thread that wants in, or comes out, stops for good, and the exit waits for those inside,
/// 250 ms at most. Waking callbacks shorten that to nothing much.
class ExitGate {
 public:
    static ExitGate& shared();

    /// Installs the exit handler: before the threads in question start. What they use must have
    /// been made before, or never be destroyed. Once per process, later calls do nothing.
    void install();

    /// A thread's stay inside; may be nested. Never returns once the gate is closed.
    class Stay {
     public:
        Stay();
        ~Stay();
        Stay(const Stay&) = delete;
        Stay& operator=(const Stay&) = delete;
    };

    /// Registers what wakes a thread inside from its waiting; callable on any thread.
    int addWaker(std::function<void()> wake);
    void removeWaker(int ticket);

 private:
    static void close();
    [[noreturn]] static void park();

    std::mutex mutex_;
    std::condition_variable left_;
    std::map<int, std::function<void()>> wakers_;
    int lastTicket_ = 0;
    int inside_ = 0;
    bool closed_ = false;
    std::atomic<int> owner_ = 0;
};

}  // namespace vorla
