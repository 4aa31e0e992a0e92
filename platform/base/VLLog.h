#pragma once

#include <cstdarg>
#include <functional>
#include <string>
#include <string_view>

/// Logs one line (printf format, UTF-8) to the system log and standard error, or to the handler
/// that the host has set. Any thread. Never fails.
[[gnu::format(printf, 1, 2)]] void VLLog(const char* format, ...);

/// The same for lines that recur with every pointer movement: they reach a handler only, for
/// writing them to the system log would cost more than the work that they tell of.
[[gnu::format(printf, 1, 2)]] void VLLogTrace(const char* format, ...);

namespace vorla {

/// Receives each line, without a newline, on the thread that logged it.
using LogHandler = std::function<void(std::string_view line)>;

/// The text of a printf format with its arguments; the format itself when they do not fit it.
std::string formattedLine(const char* format, va_list arguments);

/// Logs one finished line as `VLLog` does, on standard error only where that is asked for.
void logLine(std::string_view line, bool onStandardError);

/// Redirects all log lines; an empty handler restores the default. Any thread.
void setLogHandler(LogHandler handler);

}  // namespace vorla
