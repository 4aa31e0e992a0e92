#include "crash/handler/ThreadStopper.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>

#include <atomic>
#include <utility>

namespace vorla::crash {
namespace {

constexpr int64_t longestWait = 20;
/// A thread waits no longer than this: whoever stopped it has ended then, or hangs.
constexpr int64_t longestHold = 3000;

enum State : uint32_t { idle, asked, noting, stopped };

/// What the one who asks and the thread that is asked share. `request` distinguishes a signal
/// that comes late from the one that is waited for.
struct Meeting {
    std::atomic<uint32_t> state{idle};
    std::atomic<int> request{0};
    std::atomic<pid_t> thread{0};
    Registers registers;
    void (*work)(void*, ucontext_t&) = nullptr;
    void* argument = nullptr;
};
Meeting meeting;
int stopSignal = 0;

void waitWhile(std::atomic<uint32_t>& word, uint32_t value, int64_t milliseconds) {
    const int64_t end = monotonicMilliseconds() + milliseconds;
    const timespec pause{0, 5'000'000};
    while (word == value && monotonicMilliseconds() < end)
        ::syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, &pause, nullptr, 0);
}

void setState(State state) {
    meeting.state = state;
    ::syscall(SYS_futex, &meeting.state, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

void holdStill(int, siginfo_t* info, void* context) {
    const int before = errno;
    uint32_t expected = asked;
    if (info->si_code == SI_QUEUE && info->si_value.sival_int == meeting.request &&
        meeting.thread == ::gettid() && meeting.state.compare_exchange_strong(expected, noting)) {
        auto& interrupted = *static_cast<ucontext_t*>(context);
        if (const auto work = std::exchange(meeting.work, nullptr)) {
            meeting.state = idle;
            work(meeting.argument, interrupted);
        } else {
            meeting.registers = Registers(interrupted);
            setState(stopped);
            waitWhile(meeting.state, stopped, longestHold);
        }
    }
    errno = before;
}

/// Whether nobody but us handles the signal.
bool isFree(int signal) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) != 0) return false;
    return (action.sa_flags & SA_SIGINFO) != 0 ? action.sa_sigaction == holdStill
                                               : action.sa_handler == SIG_DFL;
}

void ask(pid_t thread) {
    meeting.thread = thread;
    const int request = ++meeting.request;
    meeting.state = asked;
    siginfo_t info{};
    info.si_signo = stopSignal;
    info.si_code = SI_QUEUE;
    info.si_pid = ::getpid();
    info.si_uid = ::getuid();
    info.si_value.sival_int = request;
    if (::syscall(SYS_rt_tgsigqueueinfo, ::getpid(), thread, stopSignal, &info) == 0)
        waitWhile(meeting.state, asked, longestWait);
}

}  // namespace

int64_t monotonicMilliseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
}

void ThreadStopper::chooseSignal() {
    if (stopSignal != 0 && isFree(stopSignal)) return;
    stopSignal = 0;
    for (int signal = SIGRTMIN + 5; stopSignal == 0 && signal < SIGRTMAX; ++signal)
        if (isFree(signal)) stopSignal = signal;
}

ThreadStopper::ThreadStopper() {
    struct sigaction action {};
    action.sa_sigaction = holdStill;
    action.sa_flags = SA_SIGINFO | SA_RESTART | SA_ONSTACK;
    ::sigfillset(&action.sa_mask);
    ::sigaction(stopSignal, &action, nullptr);
}

bool ThreadStopper::stop(pid_t thread, Registers& registers) {
    if (stopSignal == 0) return false;
    ask(thread);
    uint32_t expected = asked;
    if (meeting.state.compare_exchange_strong(expected, idle)) return false;
    waitWhile(meeting.state, noting, longestWait);
    if (meeting.state != stopped) return false;
    registers = meeting.registers;
    return true;
}

bool ThreadStopper::callInHandler(void (*work)(void*, ucontext_t&), void* argument) {
    if (stopSignal == 0) return false;
    meeting.work = work;
    meeting.argument = argument;
    ask(::gettid());
    uint32_t expected = asked;
    meeting.state.compare_exchange_strong(expected, idle);
    return std::exchange(meeting.work, nullptr) == nullptr;
}

void ThreadStopper::resume() {
    setState(idle);
}

}  // namespace vorla::crash
