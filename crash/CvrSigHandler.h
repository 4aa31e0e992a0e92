#pragma once

#include <mutex>

#include "platform/base/raii.h"

/// Takes the fatal signals: SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV, SIGTRAP, SIGPIPE (unless the
/// host ignores it) and SIGSYS. Any thread.
class CvrSigHandler {
 public:
    static CvrSigHandler& sharedInstance();

    CvrSigHandler(const CvrSigHandler&) = delete;
    CvrSigHandler& operator=(const CvrSigHandler&) = delete;

    /// Whether `install` does anything; true at first.
    void enableHandler(bool enable);

    /// Prepares what the handler needs, gives the calling thread an alternate stack and sets the
    /// handlers. False, with nothing changed, when disabled, installed already or refused.
    bool install();
    /// Puts the earlier handlers back. False when not installed.
    bool uninstall();
    /// Takes the handlers' place back from another party. True when they are in place afterwards.
    bool reset();
    /// Whether the handler of SIGSEGV is ours.
    bool checkHandler();

    /// The calling thread's alternate stack.
    bool InitAltStack();
    void UnInitAltStack();

 private:
    CvrSigHandler() = default;
    template <typename T>
    friend class vorla::NoDestructor;

    std::mutex mutex_;
    bool handlerEnable_ = true;
};
