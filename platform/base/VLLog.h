#pragma once

#include <cstdarg>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Log lines: one line each, printf format, UTF-8, no newline. Any thread; logging never fails.
//
// By default a line goes to the system log and standard error when the log level admits it; of a
// healthy session that is nothing. A host that sets a handler receives every line instead, whatever
// the level, on the thread that logged it and never while a lock of ours is held or an object of
// ours is being made: the handler may call back into the library, fork, or wait for other threads.

/// Something went wrong: the user or the host misses something. Shown at the default level.
[[gnu::format(printf, 1, 2)]] void VLLogError(const char* format, ...);

/// The course of events. Shown from `LogLevelInfo` on.
[[gnu::format(printf, 1, 2)]] void VLLog(const char* format, ...);

/// Lines that recur with every pointer movement. Shown from `LogLevelTrace` on.
[[gnu::format(printf, 1, 2)]] void VLLogTrace(const char* format, ...);

namespace vorla {

enum LogLevel : int {
    LogLevelOff = 0,
    LogLevelError = 1,
    LogLevelInfo = 2,
    LogLevelTrace = 3,
};

/// The level of the default output. It starts as the environment variable VORLA_LOG says ("off",
/// "error", "info" or "trace"), else at `LogLevelError`. Any thread.
void setLogLevel(LogLevel level);
LogLevel logLevel();

/// Receives each line, without a newline. What it throws is dropped.
using LogHandler = std::function<void(std::string_view line)>;

/// Redirects all log lines; an empty handler restores the default. Any thread.
void setLogHandler(LogHandler handler);

/// The text of a printf format with its arguments; the format itself when they do not fit it.
std::string formattedLine(const char* format, va_list arguments);

/// Logs one finished line whatever the level (a log with levels of its own stands above it), on
/// standard error only where that is asked for.
void logLine(std::string_view line, bool onStandardError);

struct LogLine;

/// Keeps back what its thread logs until the last one of the thread ends, and then logs it in the
/// order in which it came. Stands before each lock under which something may be logged, so that the
/// lock is free again when a handler runs.
class LogHold {
 public:
    LogHold();
    ~LogHold();
    LogHold(const LogHold&) = delete;
    LogHold& operator=(const LogHold&) = delete;

 private:
    /// Stays empty inside another hold.
    std::vector<LogLine> lines_;
};

}  // namespace vorla
