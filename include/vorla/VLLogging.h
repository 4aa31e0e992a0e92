#pragma once

#include <vorla/export.h>

#include <functional>
#include <string_view>

/// Sends the framework's log lines to the host instead of the system log and standard error. The
/// handler gets one line, UTF-8, without its newline, on the thread that logs; no lock of ours is
/// held, so it may call back, count, fork or wait for another thread. An empty one restores the
/// default. Any thread; a line that is being logged may still reach the handler before.
VL_EXPORT void VLSetLogHandler(std::function<void(std::string_view line)> handler);
