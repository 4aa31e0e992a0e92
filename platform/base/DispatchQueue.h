#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace vorla {

/// Background work. A queue starts its threads with the first task, so one that is never used costs
/// nothing. Tasks must not throw.
///
/// The global queue lives until the process ends and is never joined: an exiting host does not wait
/// for unfinished tasks, and tasks must therefore only touch objects that they hold themselves or
/// that are never destroyed. Any thread.
class DispatchQueue {
 public:
    using Task = std::function<void()>;

    /// A queue with one thread of its own, named `label` (15 bytes of it show in debuggers): tasks
    /// run one after the other. Destroying it lets the running task finish and drops the rest.
    explicit DispatchQueue(std::string label);
    ~DispatchQueue();
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    /// The process-wide concurrent queue, with a thread for each processor, two at least.
    static DispatchQueue& global();

    /// Runs a task on the global queue, or in this call where no thread is to be had.
    static void inBackground(const Task& task);

    /// Throws std::system_error when the queue's first thread cannot be started; it makes do with
    /// fewer than it should have.
    void async(Task task);
    /// The same once the delay is over. Time that the machine sleeps does not count.
    void asyncAfter(std::chrono::milliseconds delay, Task task);

 private:
    DispatchQueue(std::string label, unsigned threads);
    [[nodiscard]] Task named(Task task) const;
    struct State;
    std::unique_ptr<State> state_;
    template <typename T>
    friend class NoDestructor;
};

}  // namespace vorla
