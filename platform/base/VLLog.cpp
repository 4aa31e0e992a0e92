#include "platform/base/VLLog.h"

#include <syslog.h>
#include <vorla/VLLogging.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/raii.h"

namespace vorla {

struct LogLine {
    int priority;
    bool onStandardError;
    std::string text;
};

namespace {

struct LogState {
    std::mutex mutex;
    std::shared_ptr<const LogHandler> handler;
};

LogState& state() {
    static NoDestructor<LogState> instance;
    return *instance;
}

std::shared_ptr<const LogHandler> currentHandler() {
    const std::lock_guard lock(state().mutex);
    return state().handler;
}

LogLevel levelOfEnvironment() {
    const char* value = std::getenv("VORLA_LOG");
    const std::string_view name = value ? value : "";
    if (name == "off") return LogLevelOff;
    if (name == "info") return LogLevelInfo;
    return name == "trace" ? LogLevelTrace : LogLevelError;
}

std::atomic<LogLevel>& level() {
    static std::atomic<LogLevel> instance{levelOfEnvironment()};
    return instance;
}

/// The lines that the outermost hold of the thread keeps back.
thread_local std::vector<LogLine>* heldLines = nullptr;

void deliver(const LogLine& line) {
    if (const auto handler = currentHandler()) {
        try {
            (*handler)(line.text);
        } catch (...) {
            // A host's fault in its handler must not break what merely had something to log.
        }
        return;
    }
    ::syslog(LOG_USER | line.priority, "%s", line.text.c_str());
    if (line.onStandardError) std::fprintf(stderr, "%s\n", line.text.c_str());
}

void deliverOrHold(LogLine line) {
    if (heldLines)
        heldLines->push_back(std::move(line));
    else
        deliver(line);
}

void log(LogLevel wanted, const char* format, va_list arguments) {
    if (wanted > logLevel() && !currentHandler()) return;
    const int priority = wanted == LogLevelError ? LOG_ERR : LOG_INFO;
    deliverOrHold({priority, true, formattedLine(format, arguments)});
}

}  // namespace

std::string formattedLine(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0) return format;
    std::string line(static_cast<size_t>(length) + 1, '\0');
    std::vsnprintf(line.data(), line.size(), format, arguments);
    line.pop_back();
    return line;
}

void logLine(std::string_view line, bool onStandardError) {
    deliverOrHold({LOG_INFO, onStandardError, std::string(line)});
}

void setLogLevel(LogLevel wanted) {
    level() = wanted;
}

LogLevel logLevel() {
    return level();
}

void setLogHandler(LogHandler handler) {
    auto shared = handler ? std::make_shared<const LogHandler>(std::move(handler)) : nullptr;
    // The old handler ends outside the lock: its captures may log in their destructors.
    const std::lock_guard lock(state().mutex);
    state().handler.swap(shared);
}

LogHold::LogHold() {
    if (!heldLines) heldLines = &lines_;
}

LogHold::~LogHold() {
    if (heldLines != &lines_) return;
    heldLines = nullptr;
    for (const LogLine& line : lines_) deliver(line);
}

}  // namespace vorla

void VLLogError(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vorla::log(vorla::LogLevelError, format, arguments);
    va_end(arguments);
}

void VLLog(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vorla::log(vorla::LogLevelInfo, format, arguments);
    va_end(arguments);
}

void VLLogTrace(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vorla::log(vorla::LogLevelTrace, format, arguments);
    va_end(arguments);
}

void VLSetLogHandler(std::function<void(std::string_view line)> handler) {
    vorla::setLogHandler(std::move(handler));
}

void VLSetLogLevel(VLLogLevel level) {
    vorla::setLogLevel(static_cast<vorla::LogLevel>(level));
}
