#include "crash/handler/FaultShield.h"

#include <sys/uio.h>
#include <unistd.h>
#include <csetjmp>
#include <csignal>

#include <atomic>
#include <cstring>

namespace vorla::crash {
namespace {

std::atomic<pid_t> shieldedThread{0};
std::jmp_buf wayOut;

}  // namespace

bool runShielded(void (*work)(void*), void* argument) {
    sigset_t faults;
    sigset_t before;
    ::sigemptyset(&faults);
    ::sigaddset(&faults, SIGSEGV);
    ::sigaddset(&faults, SIGBUS);
    ::pthread_sigmask(SIG_UNBLOCK, &faults, &before);
    bool whole = false;
    if (_setjmp(wayOut) == 0) {
        shieldedThread = ::gettid();
        work(argument);
        whole = true;
    }
    shieldedThread = 0;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return whole;
}

void leaveShieldedWork() {
    if (shieldedThread.load(std::memory_order_relaxed) == ::gettid()) std::longjmp(wayOut, 1);
}

bool readMemory(uintptr_t from, void* to, size_t size) {
    const iovec local{to, size};
    const iovec remote{reinterpret_cast<void*>(from), size};
    const ssize_t count = ::process_vm_readv(::getpid(), &local, 1, &remote, 1, 0);
    if (count == static_cast<ssize_t>(size)) return true;
    // Some sandboxes forbid the call.
    if (count >= 0 || errno == EFAULT || shieldedThread == ::gettid()) return false;
    return runShielded([&] { std::memcpy(to, reinterpret_cast<const void*>(from), size); });
}

}  // namespace vorla::crash
