#pragma once

#include <csignal>

namespace vorla::crash {

/// Ends a process whose crash handler takes longer than 2 seconds, by the signal that the handler
/// was called for; half a second later by SIGKILL, should even that not help.
class HandlerGuard {
 public:
    /// Takes over a real-time signal that nobody else handles. Not after a fault.
    static void chooseSignal();

    /// The rest may run after a fault.
    explicit HandlerGuard(int signal);
    HandlerGuard(const HandlerGuard&) = delete;
    HandlerGuard& operator=(const HandlerGuard&) = delete;
    ~HandlerGuard();

    /// Takes the guard's signal out of a set.
    static void exclude(sigset_t& signals);

 private:
    int timers_[2] = {-1, -1};
};

/// Ends the process by the signal, whatever handler it has, on the calling thread. Does not return.
[[noreturn]] void dieBySignal(int signal);

}  // namespace vorla::crash
