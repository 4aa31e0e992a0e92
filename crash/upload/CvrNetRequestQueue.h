#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "crash/upload/CvrWorld.h"

class CvrNetRequestBase;

/// Lets one ordinary request run at a time, the others wait for their turn. Any thread.
class CvrNetRequestQueue {
 public:
    explicit CvrNetRequestQueue(CvrScheduler& scheduler) : scheduler_(scheduler) {}
    CvrNetRequestQueue(const CvrNetRequestQueue&) = delete;
    CvrNetRequestQueue& operator=(const CvrNetRequestQueue&) = delete;

    /// Starts the request or has it wait. One that is here already is ignored.
    void addOneRequest(const std::shared_ptr<CvrNetRequestBase>& request);
    /// The request has ended: the oldest one that waits takes its turn.
    void requestFinish(const std::shared_ptr<CvrNetRequestBase>& request);

 private:
    void start(const std::shared_ptr<CvrNetRequestBase>& request);

    static constexpr size_t maxConcurrentRequest = 1;

    CvrScheduler& scheduler_;
    std::mutex mutex_;
    std::vector<std::shared_ptr<CvrNetRequestBase>> running_;
    std::deque<std::shared_ptr<CvrNetRequestBase>> waiting_;
};
