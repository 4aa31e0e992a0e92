#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <utility>

#include "tests/support/waiting.h"

namespace vorla::test {

/// A real child process: one that runs a function and exits with its result, without the parent's
/// exit handlers, or a program (see PipedProgram). It is killed with the object.
class ChildProcess {
 public:
    /// What `wait` returns of a process that has not ended or is none.
    static constexpr int notEnded = -1000;

    explicit ChildProcess(const std::function<int()>& body) : pid_(::fork()) {
        if (pid_ == 0) ::_exit(body());
    }
    ~ChildProcess() { terminate(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Waits for the end: the exit code, or minus the signal that ended it.
    int wait() {
        int status = 0;
        if (::waitpid(std::exchange(pid_, -1), &status, 0) < 0) return notEnded;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    /// The same; killed when it has not ended in time.
    int wait(int milliseconds) {
        if (pid_ > 0 && eventually([this] { return hasEnded(); }, milliseconds)) return wait();
        terminate();
        return notEnded;
    }
    [[nodiscard]] bool hasEnded() const {
        siginfo_t facts = {};
        return ::waitid(P_PID, static_cast<id_t>(pid_), &facts, WEXITED | WNOHANG | WNOWAIT) != 0 ||
               facts.si_pid == pid_;
    }
    void kill(int signal) const {
        if (pid_ > 0) ::kill(pid_, signal);
    }
    void terminate() {
        if (pid_ <= 0) return;
        kill(SIGKILL);
        wait();
    }
    [[nodiscard]] pid_t pid() const { return pid_; }

 protected:
    ChildProcess() = default;
    pid_t pid_ = -1;
};

}  // namespace vorla::test
