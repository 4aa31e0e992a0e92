#pragma once

/// The crash reporter's one level: 0 prints only what is always printed, 1 errors, 3 warnings, 4
/// information. Any thread.
void setCvrLogLevel(int level);
int cvrLogLevel();

/// Log one line (printf format, UTF-8) to the host's log handler or, without one, to the system
/// log; with the environment variable VORLA_CRASH_LOG set to standard error as well. Ordinary code
/// only, never after a fault. Any thread.
[[gnu::format(printf, 1, 2)]] void CvrLogError(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void CvrLogWarn(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void CvrLogInfo(const char* format, ...);
/// Prints at every level.
[[gnu::format(printf, 1, 2)]] void CvrLogAlways(const char* format, ...);
