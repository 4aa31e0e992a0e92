#include "platform/base/DispatchQueue.h"

#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <asio/thread_pool.hpp>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "platform/base/raii.h"

namespace vorla {
namespace {

/// The host's signals belong to the host's threads: threads started in its scope are born with all
/// of them blocked but those that a thread raises by its own fault.
class SignalsBlocked {
 public:
    SignalsBlocked() {
        sigset_t blocked;
        sigfillset(&blocked);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS})
            sigdelset(&blocked, fault);
        pthread_sigmask(SIG_SETMASK, &blocked, &previous_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
    sigset_t previous_;
};

}  // namespace

struct DispatchQueue::State {
    std::string label;
    unsigned threads;
    std::mutex mutex;
    std::optional<asio::thread_pool> pool;
    std::vector<std::jthread> workers;  ///< joined before the pool goes

    asio::thread_pool& runningPool() {
        const std::lock_guard lock(mutex);
        if (pool) return *pool;
        const SignalsBlocked guard;
        // With threads of its own, the pool would wait for ever for the first of them where another
        // cannot be started.
        workers.reserve(threads);
        pool.emplace(0);
        try {
            while (workers.size() < threads) workers.emplace_back([this] { pool->attach(); });
        } catch (const std::system_error&) {
            if (!workers.empty()) return *pool;
            pool.reset();
            throw;
        }
        return *pool;
    }
};

DispatchQueue::DispatchQueue(std::string label) : DispatchQueue(std::move(label), 1) {}

DispatchQueue::DispatchQueue(std::string label, unsigned threads)
    : state_(std::make_unique<State>()) {
    state_->label = std::move(label);
    state_->threads = threads;
}

DispatchQueue::~DispatchQueue() {
    if (state_->pool) state_->pool->stop();
}

DispatchQueue& DispatchQueue::global() {
    static NoDestructor<DispatchQueue> instance("vorla-global",
                                                std::max(2U, std::thread::hardware_concurrency()));
    return *instance;
}

void DispatchQueue::inBackground(const Task& task) {
    try {
        global().async(task);
    } catch (const std::system_error&) {
        task();
    }
}

void DispatchQueue::async(Task task) {
    asio::post(state_->runningPool(), named(std::move(task)));
}

void DispatchQueue::asyncAfter(std::chrono::milliseconds delay, Task task) {
    const auto timer = std::make_shared<asio::steady_timer>(state_->runningPool(), delay);
    timer->async_wait([timer, task = named(std::move(task))](const asio::error_code& stopped) {
        if (!stopped) task();
    });
}

/// The task, on a thread that has its name.
DispatchQueue::Task DispatchQueue::named(Task task) const {
    return [task = std::move(task), label = state_->label] {
        thread_local bool named = false;
        if (!std::exchange(named, true))
            pthread_setname_np(pthread_self(), label.substr(0, 15).c_str());
        task();
    };
}

}  // namespace vorla
