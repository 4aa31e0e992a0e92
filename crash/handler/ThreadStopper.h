#pragma once

#include <sys/types.h>

#include <ctime>

#include "crash/handler/StackWalker.h"

namespace vorla::crash {

/// Holds one other thread of the process while its stack is read. It is stopped by a signal, whose
/// handler notes the thread's registers and waits. One at a time. May run after a fault.
class ThreadStopper {
 public:
    /// Chooses a signal that nobody else handles; another one when the host has come to use it.
    static void chooseSignal();

    /// Sets the signal's handler; for good, as a thread may come upon the signal much later.
    ThreadStopper();

    /// False when the thread did not stop within 20 ms: it has ended, or blocks all signals.
    bool stop(pid_t thread, Registers& registers);
    void resume();

    /// Calls `work` on the calling thread from within the signal's handler, with the context that
    /// this was given. For a walk of the process's stacks without a fault. False when it was not
    /// called.
    bool callInHandler(void (*work)(void* argument, ucontext_t& context), void* argument);
};

/// Milliseconds of a clock that only ever goes forward.
int64_t monotonicMilliseconds();

}  // namespace vorla::crash
