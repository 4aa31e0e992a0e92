#pragma once

#include <chrono>
#include <functional>

#include "NEX/NEX+PAK/RMIModelNEX/HTTPMessage.h"

/// Where the crash reporter's work is done: one task after the other, never in line and never on
/// the host's main thread. Any thread may hand tasks over. Tasks must not throw.
class CvrScheduler {
 public:
    using Task = std::function<void()>;

    virtual ~CvrScheduler() = default;
    virtual void async(Task task) = 0;
    virtual void asyncAfter(std::chrono::milliseconds delay, Task task) = 0;
};

/// Sends requests.
class CvrTransport {
 public:
    using Completion = std::function<void(const vorla::HTTPResult&)>;

    virtual ~CvrTransport() = default;
    /// Does not block; the completion is called exactly once, on any thread, never in line.
    virtual void send(vorla::HTTPRequest request, Completion completion) = 0;
};
