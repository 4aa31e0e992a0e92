#include "crash/upload/CvrNetRequestQueue.h"

#include <algorithm>

#include "crash/upload/CvrNetRequest.h"

void CvrNetRequestQueue::start(const std::shared_ptr<CvrNetRequestBase>& request) {
    scheduler_.async([request] { request->_startAsync(); });
}

void CvrNetRequestQueue::addOneRequest(const std::shared_ptr<CvrNetRequestBase>& request) {
    {
        const std::lock_guard lock(mutex_);
        if (std::ranges::count(running_, request) > 0 || std::ranges::count(waiting_, request) > 0)
            return;
        const bool now = request->priority == CvrNetRequestBase::priorityBeside ||
                         running_.size() < maxConcurrentRequest;
        if (!now) {
            waiting_.push_back(request);
            return;
        }
        running_.push_back(request);
    }
    start(request);
}

void CvrNetRequestQueue::requestFinish(const std::shared_ptr<CvrNetRequestBase>& request) {
    std::shared_ptr<CvrNetRequestBase> next;
    {
        const std::lock_guard lock(mutex_);
        if (std::erase(running_, request) == 0) {
            std::erase(waiting_, request);
            return;
        }
        if (waiting_.empty()) return;
        next = waiting_.front();
        waiting_.pop_front();
        running_.push_back(next);
    }
    start(next);
}
