#pragma once

#include <functional>

#include "platform/base/MainQueue.h"

namespace vorla {

/// Where a completion handler runs: on the host's main loop, or on the thread of the HTTP session.
enum class CompletionQueue { Main, Session };

/// Runs a handler there; called on the session's thread. A host that has plugged no main loop in
/// would never see it run, and so gets it on the session's thread.
inline void completeOn(CompletionQueue queue, std::function<void()> handler) {
    if (queue == CompletionQueue::Main && MainQueue::isRunning())
        MainQueue::post(std::move(handler));
    else
        handler();
}

}  // namespace vorla
