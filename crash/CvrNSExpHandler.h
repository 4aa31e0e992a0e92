#pragma once

#include <atomic>

#include "platform/base/raii.h"

/// Notes what is known of an exception that nobody catches. It writes no report: the abort that
/// follows does. Any thread.
class CvrNSExpHandler {
 public:
    static CvrNSExpHandler& sharedInstance();

    CvrNSExpHandler(const CvrNSExpHandler&) = delete;
    CvrNSExpHandler& operator=(const CvrNSExpHandler&) = delete;

    /// Whether `install` does anything; true at first.
    void enableHandler(bool enable);
    /// Whether an uncaught exception first takes the signal handlers' place back; returns `enable`.
    bool enableSignalHandlerCheck(bool enable);
    [[nodiscard]] bool isSignalHandlerCheckEnable() const;

    void install();
    void uninstall();
    /// Whether the terminate handler is ours.
    bool checkHandler();

 private:
    CvrNSExpHandler() = default;
    template <typename T>
    friend class vorla::NoDestructor;

    std::atomic<bool> handlerEnable_{true};
    std::atomic<bool> signalHandlerResetable_{false};
};

namespace vorla::crash {

/// Puts the earlier terminate handler back. May run after a fault.
void removeTerminateHandler();

}  // namespace vorla::crash
