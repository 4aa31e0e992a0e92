#include "platform/base/ParallelWork.h"

#include <atomic>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>

#include "platform/base/DispatchQueue.h"

namespace vorla {
namespace {

// Helpers may start long after the call has returned. They hold this object, find no piece left and
// never touch `work`, which belongs to the caller.
struct Job {
    const std::function<void(unsigned, size_t)>* work;
    size_t count;
    std::atomic<size_t> next = 0;
    std::mutex mutex;
    std::condition_variable allDone;
    size_t done = 0;

    void run(unsigned worker) {
        size_t mine = 0;
        for (size_t piece; (piece = next.fetch_add(1, std::memory_order_relaxed)) < count; ++mine)
            (*work)(worker, piece);
        if (mine == 0) return;
        const std::lock_guard lock(mutex);
        done += mine;
        if (done == count) allDone.notify_all();
    }
};

}  // namespace

void workInParallel(size_t count, unsigned helpers,
                    const std::function<void(unsigned worker, size_t piece)>& work) {
    const auto job = std::make_shared<Job>();
    job->work = &work;
    job->count = count;
    try {
        for (unsigned helper = 1; helper <= helpers && helper < count; ++helper)
            DispatchQueue::global().async([job, helper] { job->run(helper); });
    } catch (const std::exception&) {
        // No memory or no thread for more helpers. Those that did start must not outlive `work`, so
        // the call goes on with them.
    }
    job->run(0);
    std::unique_lock lock(job->mutex);
    job->allDone.wait(lock, [&job] { return job->done == job->count; });
}

}  // namespace vorla
