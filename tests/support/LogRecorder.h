#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "platform/base/VLLog.h"

namespace vorla::test {

/// Collects the log lines of its scope instead of printing them. Any thread may log.
class LogRecorder {
 public:
    LogRecorder() {
        setLogHandler([this](std::string_view line) {
            const std::lock_guard lock(mutex_);
            lines_.emplace_back(line);
        });
    }
    ~LogRecorder() { setLogHandler({}); }
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    [[nodiscard]] std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    [[nodiscard]] long count(std::string_view part) const {
        const std::lock_guard lock(mutex_);
        return std::count_if(lines_.begin(), lines_.end(), [part](const std::string& line) {
            return line.find(part) != std::string::npos;
        });
    }

 private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

}  // namespace vorla::test
