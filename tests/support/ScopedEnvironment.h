#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace vorla::test {

/// Sets environment variables (or removes those given no value) and restores them at the end of its
/// scope. For tests whose other threads read no environment.
class ScopedEnvironment {
 public:
    explicit ScopedEnvironment(const std::map<std::string, std::optional<std::string>>& values) {
        for (const auto& [name, value] : values) {
            const char* old = std::getenv(name.c_str());
            previous_.emplace(name, old ? std::optional<std::string>(old) : std::nullopt);
            assign(name, value);
        }
    }
    ~ScopedEnvironment() {
        for (const auto& [name, value] : previous_) assign(name, value);
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
    static void assign(const std::string& name, const std::optional<std::string>& value) {
        if (value)
            ::setenv(name.c_str(), value->c_str(), 1);
        else
            ::unsetenv(name.c_str());
    }
    std::map<std::string, std::optional<std::string>> previous_;
};

}  // namespace vorla::test
