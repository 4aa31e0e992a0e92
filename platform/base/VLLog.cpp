#include "platform/base/VLLog.h"

#include <syslog.h>
#include <vorla/VLLogging.h>

#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "platform/base/raii.h"

namespace vorla {
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

void setLogHandler(LogHandler handler) {
    auto shared = handler ? std::make_shared<const LogHandler>(std::move(handler)) : nullptr;
    const std::lock_guard lock(state().mutex);
    state().handler = std::move(shared);
}

void logLine(std::string_view line, bool onStandardError) {
    if (const auto handler = currentHandler()) {
        (*handler)(line);
        return;
    }
    const int length = static_cast<int>(line.size());
    ::syslog(LOG_USER | LOG_INFO, "%.*s", length, line.data());
    if (onStandardError) std::fprintf(stderr, "%.*s\n", length, line.data());
}

}  // namespace vorla

void VLLog(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::string line = vorla::formattedLine(format, arguments);
    va_end(arguments);
    vorla::logLine(line, true);
}

void VLLogTrace(const char* format, ...) {
    const auto handler = vorla::currentHandler();
    if (!handler) return;
    va_list arguments;
    va_start(arguments, format);
    const std::string line = vorla::formattedLine(format, arguments);
    va_end(arguments);
    (*handler)(line);
}

void VLSetLogHandler(std::function<void(std::string_view line)> handler) {
    vorla::setLogHandler(std::move(handler));
}
