#pragma once

#include <vorla/export.h>

#include <functional>
#include <string_view>

/// @file
/// Where the framework's log lines go, and how many there are.

/// Sends all of the framework's log lines, whatever the level, to the host instead of the system
/// log and standard error. The handler gets one line, UTF-8, without its newline, on the thread
/// that logs; no lock of ours is held, so it may call back, count, fork or wait for another thread.
/// An empty one restores the default. Any thread; a line that is being logged may still reach the
/// handler before.
VL_EXPORT void VLSetLogHandler(std::function<void(std::string_view line)> handler);

/// What is logged where no handler is set.
enum VLLogLevel : int {
    VLLogLevelOff = 0,
    VLLogLevelError = 1,  ///< something that the user or the host misses; the level at first
    VLLogLevelInfo = 2,   ///< the course of events
    VLLogLevelTrace = 3,  ///< lines that recur with every pointer movement
};

/// Sets the level. It starts as the environment variable VORLA_LOG says ("off", "error", "info" or
/// "trace"). Any thread.
VL_EXPORT void VLSetLogLevel(VLLogLevel level);
