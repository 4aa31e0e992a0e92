#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/PipedProgram.h"

namespace vorla::test {

/// The server of tools/ that the target's VORLA_SERVER names, as a real process on loopback.
class LoopbackServer {
 public:
    /// Further arguments as the tool takes them, as {"--reply", "bomb"}.
    explicit LoopbackServer(std::vector<std::string> arguments = {})
        : program_(commandLine(std::move(arguments))),
          url_(nextRequest().value("url", std::string())) {}

    [[nodiscard]] const std::string& url() const { return url_; }

    /// The next request that it reports; an empty object when none came in time.
    nlohmann::json nextRequest(int milliseconds = 10000) {
        const auto line = program_.nextLine(milliseconds);
        return line ? nlohmann::json::parse(*line) : nlohmann::json::object();
    }

 private:
    static std::vector<std::string> commandLine(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"python3", VORLA_SERVER});
        return arguments;
    }

    PipedProgram program_;
    std::string url_;
};

}  // namespace vorla::test
