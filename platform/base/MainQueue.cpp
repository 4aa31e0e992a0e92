#include "platform/base/MainQueue.h"

#include <mutex>
#include <utility>
#include <vector>

#include "platform/base/raii.h"

namespace vorla {
namespace {

struct QueueState {
    std::mutex mutex;
    std::shared_ptr<MainQueue::Backend> backend;
    std::vector<std::pair<std::chrono::milliseconds, MainQueue::Task>> waiting;
};

QueueState& state() {
    static NoDestructor<QueueState> instance;
    return *instance;
}

}  // namespace

void MainQueue::postAfter(std::chrono::milliseconds delay, Task task) {
    std::shared_ptr<Backend> backend;
    {
        const std::lock_guard lock(state().mutex);
        backend = state().backend;
        if (!backend) {
            state().waiting.emplace_back(delay, std::move(task));
            return;
        }
    }
    backend->post(delay, std::move(task));
}

void MainQueue::setBackend(std::shared_ptr<Backend> backend) {
    // Until all that waits is handed over, others go on adding to what waits: else a task posted
    // meanwhile would overtake them.
    for (;;) {
        std::vector<std::pair<std::chrono::milliseconds, Task>> waiting;
        {
            const std::lock_guard lock(state().mutex);
            if (!backend || state().waiting.empty()) {
                state().backend.swap(backend);
                return;
            }
            waiting.swap(state().waiting);
        }
        for (auto& [delay, task] : waiting) backend->post(delay, std::move(task));
    }
}

bool MainQueue::isRunning() {
    const std::lock_guard lock(state().mutex);
    return state().backend != nullptr;
}

}  // namespace vorla
