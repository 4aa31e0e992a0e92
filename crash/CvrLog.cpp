#include "crash/CvrLog.h"

#include <atomic>
#include <cstdarg>
#include <cstdlib>

#include "platform/base/VLLog.h"

namespace {

enum Level : int { Always = 0, Error = 1, Warn = 3, Info = 4 };

std::atomic<int> cvr_LogLevel = 0;

void log(Level level, const char* format, va_list arguments) {
    if (cvr_LogLevel < level) return;
    static const bool onStandardError = std::getenv("VORLA_CRASH_LOG") != nullptr;
    vorla::logLine(vorla::formattedLine(format, arguments), onStandardError);
}

}  // namespace

void setCvrLogLevel(int level) {
    cvr_LogLevel = level;
}
int cvrLogLevel() {
    return cvr_LogLevel;
}

void CvrLogError(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(Error, format, arguments);
    va_end(arguments);
}
void CvrLogWarn(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(Warn, format, arguments);
    va_end(arguments);
}
void CvrLogInfo(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(Info, format, arguments);
    va_end(arguments);
}
void CvrLogAlways(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    log(Always, format, arguments);
    va_end(arguments);
}
