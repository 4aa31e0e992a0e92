#include "crash/handler/FaultShield.h"

#include <sys/uio.h>
#include <unistd.h>
#include <csetjmp>
#include <csignal>

#include <atomic>
#include <cstring>

namespace vorla::crash {
namespace {

/// Where a thread's shielded work ends when it faults. There are several: a thread that reports a
/// caught error may be at it while another one crashes.
struct Shield {
    std::atomic<pid_t> thread{0};
    std::jmp_buf wayOut;
};
Shield shields[4];

Shield* shieldOf(pid_t thread) {
    for (Shield& shield : shields)
        if (shield.thread.load(std::memory_order_relaxed) == thread) return &shield;
    return nullptr;
}

Shield* takeShield() {
    for (Shield& shield : shields) {
        pid_t nobody = 0;
        if (shield.thread.compare_exchange_strong(nobody, ::gettid())) return &shield;
    }
    return nullptr;
}

/// A function of its own, for it returns a second time.
[[gnu::noinline]] bool returnsFrom(Shield& shield, void (*work)(void*), void* argument) {
    if (_setjmp(shield.wayOut) != 0) return false;
    work(argument);
    return true;
}

}  // namespace

bool runShielded(void (*work)(void*), void* argument) {
    Shield* const shield = takeShield();
    if (!shield) return false;
    sigset_t faults;
    sigset_t before;
    ::sigemptyset(&faults);
    ::sigaddset(&faults, SIGSEGV);
    ::sigaddset(&faults, SIGBUS);
    ::pthread_sigmask(SIG_UNBLOCK, &faults, &before);
    const bool whole = returnsFrom(*shield, work, argument);
    shield->thread = 0;
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return whole;
}

void leaveShieldedWork() {
    if (Shield* const shield = shieldOf(::gettid())) std::longjmp(shield->wayOut, 1);
}

bool readMemory(uintptr_t from, void* to, size_t size) {
    const iovec local{to, size};
    const iovec remote{reinterpret_cast<void*>(from), size};
    const ssize_t count = ::process_vm_readv(::getpid(), &local, 1, &remote, 1, 0);
    if (count == static_cast<ssize_t>(size)) return true;
    // Some sandboxes forbid the call.
    if (count >= 0 || errno == EFAULT || shieldOf(::gettid())) return false;
    return runShielded([&] { std::memcpy(to, reinterpret_cast<const void*>(from), size); });
}

}  // namespace vorla::crash
