#include "tests/support/TestProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

extern char** environ;

namespace vorla::test {
namespace {

std::string testClientPath() {
    // Programs of the build lie in one directory.
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "vorla-test-client";
}

}  // namespace

TestProgram::TestProgram(const std::vector<std::string>& arguments, const std::string& path,
                         const std::string& errorFile) {
    int in[2];
    int out[2];
    if (pipe2(in, O_CLOEXEC) != 0) return;
    const UniqueFd inRead(in[0]);
    input_.reset(in[1]);
    if (pipe2(out, O_CLOEXEC) != 0) return;
    output_.reset(out[0]);
    const UniqueFd outWrite(out[1]);

    std::vector<std::string> words = arguments;
    words.insert(words.begin(), path.empty() ? testClientPath() : path);
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, inRead.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, outWrite.get(), STDOUT_FILENO);
    if (!errorFile.empty())
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errorFile.c_str(),
                                         O_WRONLY | O_CREAT | O_APPEND, 0600);
    pid_t pid = -1;
    if (posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0) pid_ = pid;
    posix_spawn_file_actions_destroy(&actions);
}

TestProgram::TestProgram(TestProgram&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)),
      input_(std::move(other.input_)),
      output_(std::move(other.output_)),
      pending_(std::move(other.pending_)) {}

TestProgram::~TestProgram() {
    terminate();
}

void TestProgram::suspend() {
    if (pid_ <= 0) return;
    kill(pid_, SIGSTOP);
    int status = 0;
    waitpid(pid_, &status, WUNTRACED);
}

void TestProgram::resume() {
    if (pid_ > 0) kill(pid_, SIGCONT);
}

void TestProgram::terminate() {
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
}

bool TestProgram::send(std::string_view line) {
    const std::string whole = std::string(line) + '\n';
    return write(input_.get(), whole.data(), whole.size()) == static_cast<ssize_t>(whole.size());
}

int TestProgram::waitForExit(int milliseconds) {
    constexpr int notEnded = -1000;
    input_.reset();
    if (pid_ <= 0) return notEnded;
    int status = 0;
    for (int waited = 0; waitpid(pid_, &status, WNOHANG) == 0; waited += 5) {
        if (waited >= milliseconds) {
            terminate();
            return notEnded;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

bool TestProgram::waitForLine(std::string_view prefix, std::string* rest, int milliseconds) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        for (size_t at; (at = pending_.find('\n')) != std::string::npos;) {
            const std::string line = pending_.substr(0, at);
            pending_.erase(0, at + 1);
            if (!line.starts_with(prefix)) continue;
            if (rest != nullptr) *rest = line.substr(prefix.size());
            return true;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        pollfd fd{output_.get(), POLLIN, 0};
        char buffer[512];
        if (left.count() <= 0 || poll(&fd, 1, static_cast<int>(left.count())) <= 0) return false;
        const ssize_t got = read(output_.get(), buffer, sizeof buffer);
        if (got <= 0) return false;
        pending_.append(buffer, static_cast<size_t>(got));
    }
}

xcb_window_t TestProgram::waitUntilReady() {
    std::string id;
    if (!waitForLine("window ", &id) || !waitForLine("ready")) return XCB_NONE;
    return static_cast<xcb_window_t>(std::stoul(id, nullptr, 16));
}

int fileDescriptorsOf(int pid) {
    std::error_code error;
    int count = 0;
    for (std::filesystem::directory_iterator it("/proc/" + std::to_string(pid) + "/fd", error), end;
         !error && it != end; it.increment(error))
        ++count;
    return error ? -1 : count;
}

int sharedMemorySegmentsOf(int pid) {
    std::ifstream maps("/proc/" + std::to_string(pid) + "/maps");
    if (!maps) return -1;
    int count = 0;
    for (std::string line; std::getline(maps, line);)
        if (line.find("/memfd:") != std::string::npos ||
            line.find("/dev/shm/") != std::string::npos)
            ++count;
    std::ifstream segments("/proc/sysvipc/shm");
    std::string line;
    std::getline(segments, line);  // the column heads
    while (std::getline(segments, line)) {
        std::istringstream fields(line);
        long key = 0, id = 0, permissions = 0, size = 0, creator = -1;
        fields >> key >> id >> permissions >> size >> creator;
        if (creator == pid) ++count;
    }
    return count;
}

}  // namespace vorla::test
