#pragma once

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/raii.h"
#include "tests/support/ChildProcess.h"

namespace vorla::test {

/// A program that runs next to the test, whose standard output is read line by line and, where that
/// is asked for, whose standard input is written.
class PipedProgram : public ChildProcess {
 public:
    enum class Input { Inherited, Piped };
    /// `errorFile` empty stands for this program's own standard error.
    explicit PipedProgram(std::vector<std::string> commandLine, Input input = Input::Inherited,
                          const std::string& errorFile = {}) {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) std::abort();
        output_.reset(ends[0]);
        const UniqueFd written(ends[1]);
        UniqueFd read;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, written.get(), STDOUT_FILENO);
        if (input == Input::Piped) {
            if (::pipe2(ends, O_CLOEXEC) != 0) std::abort();
            read.reset(ends[0]);
            input_.reset(ends[1]);
            posix_spawn_file_actions_adddup2(&actions, read.get(), STDIN_FILENO);
        }
        if (!errorFile.empty())
            posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errorFile.c_str(),
                                             O_WRONLY | O_CREAT | O_APPEND, 0600);
        std::vector<char*> arguments;
        for (std::string& word : commandLine) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        if (::posix_spawnp(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0)
            pid_ = -1;
        posix_spawn_file_actions_destroy(&actions);
    }
    ~PipedProgram() { terminate(); }  // before its pipes close

    /// The next line without its end; none when the program closed its output, or no line came in
    /// time.
    std::optional<std::string> nextLine(int milliseconds = 10000) {
        const auto latest =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        for (;;) {
            if (const size_t end = read_.find('\n'); end != std::string::npos) {
                std::string line = read_.substr(0, end);
                read_.erase(0, end + 1);
                return line;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                latest - std::chrono::steady_clock::now());
            pollfd waiting{output_.get(), POLLIN, 0};
            if (left.count() <= 0 || ::poll(&waiting, 1, static_cast<int>(left.count())) <= 0)
                return std::nullopt;
            char chunk[4096];
            const ssize_t count = ::read(output_.get(), chunk, sizeof chunk);
            if (count <= 0) return std::nullopt;
            read_.append(chunk, static_cast<size_t>(count));
        }
    }

    /// All lines until the program closes its output, or the time is over.
    std::vector<std::string> allLines(int milliseconds = 20000) {
        std::vector<std::string> lines;
        while (auto line = nextLine(milliseconds)) lines.push_back(std::move(*line));
        return lines;
    }

 protected:
    UniqueFd input_;

 private:
    UniqueFd output_;
    std::string read_;
};

}  // namespace vorla::test
