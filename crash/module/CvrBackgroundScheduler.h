#pragma once

#include "crash/upload/CvrWorld.h"
#include "platform/base/DispatchQueue.h"

/// One thread for the crash reporter's work, started with the first task. Its own crashes are
/// caught as well, also when its stack is used up; the host may exit at any moment. Where no thread
/// can be had, tasks are dropped.
class CvrBackgroundScheduler final : public CvrScheduler {
 public:
    void async(Task task) override;
    void asyncAfter(std::chrono::milliseconds delay, Task task) override;

 private:
    vorla::DispatchQueue queue_{"vorla-crash"};
};
