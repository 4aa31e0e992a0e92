#include "crash/handler/HandlerGuard.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <ctime>

namespace vorla::crash {
namespace {

int guardSignal = 0;
std::atomic<int> guardedSignal{0};

void guardExpired(int) {
    dieBySignal(guardedSignal);
}

// Not the C library's timers: they take memory.
int startTimer(int signal, long milliseconds) {
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = signal;
    int timer = -1;
    if (::syscall(SYS_timer_create, CLOCK_MONOTONIC, &event, &timer) != 0) return -1;
    const itimerspec time{.it_interval = {},
                          .it_value = {milliseconds / 1000, milliseconds % 1000 * 1'000'000}};
    ::syscall(SYS_timer_settime, timer, 0, &time, nullptr);
    return timer;
}

}  // namespace

void HandlerGuard::chooseSignal() {
    for (int signal = SIGRTMAX - 5; guardSignal == 0 && signal > SIGRTMIN; --signal) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_DFL)
            guardSignal = signal;
    }
}

HandlerGuard::HandlerGuard(int signal) {
    guardedSignal = signal;
    struct sigaction action {};
    action.sa_handler = guardExpired;
    action.sa_flags = SA_ONSTACK;
    sigset_t only;
    ::sigemptyset(&only);
    ::sigaddset(&only, guardSignal);
    ::sigaction(guardSignal, &action, nullptr);
    ::pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    timers_[0] = startTimer(guardSignal, 2000);
    timers_[1] = startTimer(SIGKILL, 2500);
}

HandlerGuard::~HandlerGuard() {
    for (const int timer : timers_)
        if (timer >= 0) ::syscall(SYS_timer_delete, timer);
}

void HandlerGuard::exclude(sigset_t& signals) {
    ::sigdelset(&signals, guardSignal);
}

void dieBySignal(int signal) {
    struct sigaction byDefault {};
    byDefault.sa_handler = SIG_DFL;
    ::sigaction(signal, &byDefault, nullptr);
    sigset_t only;
    ::sigemptyset(&only);
    ::sigaddset(&only, signal);
    ::syscall(SYS_tgkill, ::getpid(), ::gettid(), signal);
    ::pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    // The first process of a container does not die by signals that it sends itself.
    ::_exit(128 + signal);
}

}  // namespace vorla::crash
