#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <utility>

namespace vorla::test {

/// A real child process that runs a function and exits with its result, without the parent's exit
/// handlers. It is killed with the object.
class ChildProcess {
 public:
    explicit ChildProcess(const std::function<int()>& body) : pid_(::fork()) {
        if (pid_ == 0) ::_exit(body());
    }
    ~ChildProcess() {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGKILL);
        wait();
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for the end: the exit code, or minus the signal that ended it.
    int wait() {
        int status = 0;
        if (::waitpid(std::exchange(pid_, -1), &status, 0) < 0) return -1000;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    void kill(int signal) const { ::kill(pid_, signal); }
    [[nodiscard]] pid_t pid() const { return pid_; }

 private:
    pid_t pid_;
};

}  // namespace vorla::test
