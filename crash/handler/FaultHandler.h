#pragma once

#include <csignal>

#include <string_view>

namespace vorla::crash {

/// The signals that are taken, in order. (Systems with a SIGEMT would have it before SIGSYS.)
constexpr int fatalsigs[] = {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGTRAP, SIGPIPE, SIGSYS};

/// Prepares what a fault needs: memory, the list of images, the time zone, the runtime's unwinder,
/// descriptors in reserve. False when the memory is refused. Ordinary code; callers exclude one
/// another. Each call notes anew what may have changed.
bool prepareForFaults();

/// Sets and removes the handlers of the signals; the first is all or nothing. Removing may run
/// after a fault.
bool setSignalHandlers();
void removeSignalHandlers();
bool areSignalHandlersSet();
/// Whether nobody has replaced ours.
bool isHandlerInPlace();

/// The handler of all the signals.
void cvr_signal_handler(int signal, siginfo_t* info, void* context);

/// What `exp_call_back_func` may ask for while a crash is under way; empty before. Views of memory
/// that stays.
struct PresentCrash {
    std::string_view type, error, log, callStack;
};
PresentCrash presentCrash();

}  // namespace vorla::crash
