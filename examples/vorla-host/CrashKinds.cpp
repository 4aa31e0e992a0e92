#include "CrashKinds.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <vorla/VLPrepareThreadForCrash.h>

// The functions that fault are kept whole and out of line, so that a report shows them: the place
// of the fault, its caller, and main.
#define FAULT_SITE [[gnu::noinline, gnu::noclone, gnu::no_sanitize("undefined")]]

namespace {

/// Keeps what stands behind a call from being made part of it, as a tail call would.
void stay() {
    asm volatile("" ::: "memory");
}

template <typename T>
T* opaque(T* pointer) {
    asm volatile("" : "+r"(pointer));
    return pointer;
}

FAULT_SITE void writeTo(volatile int* place) {
    *place = 1;
    stay();
}

FAULT_SITE void crashNull() {
    writeTo(opaque(static_cast<int*>(nullptr)));
    stay();
}

FAULT_SITE void crashWild() {
    writeTo(opaque(reinterpret_cast<int*>(0xdead000)));
    stay();
}

const int constantData = 42;

FAULT_SITE void crashReadonly() {
    writeTo(opaque(const_cast<int*>(&constantData)));
    stay();
}

FAULT_SITE void crashNullcall() {
    opaque(static_cast<void (*)()>(nullptr))();
    stay();
}

FAULT_SITE void crashBus() {
    const int file = ::memfd_create("truncated", 0);
    if (file < 0 || ::ftruncate(file, 8192) != 0) return;
    void* const mapping = ::mmap(nullptr, 8192, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (mapping == MAP_FAILED || ::ftruncate(file, 0) != 0) return;
    writeTo(static_cast<int*>(mapping));
    stay();
}

FAULT_SITE void crashFpe() {
    int divisor = 0;
    asm volatile("" : "+r"(divisor));
    // The compiler may drop a division by zero that it sees.
    asm volatile("cltd; idivl %0" : : "r"(divisor), "a"(1) : "edx", "cc");
}

FAULT_SITE void crashTrap() {
    __builtin_trap();
}

FAULT_SITE void crashBreakpoint() {
    asm volatile("int3");
}

FAULT_SITE void crashSys() {
    ::raise(SIGSYS);
    stay();
}

FAULT_SITE void crashAbort() {
    std::abort();
}

FAULT_SITE void throwIt(const std::string& text) {
    throw std::runtime_error(text);
}

FAULT_SITE void crashException() {
    throwIt("nobody catches this");
}

FAULT_SITE void crashExceptionInThread() {
    std::thread(throwIt, "nobody catches this in a thread").join();
}

FAULT_SITE void throwThroughNoexcept() noexcept {
    throwIt("this must not leave");
}

FAULT_SITE void crashNoexcept() {
    try {
        throwThroughNoexcept();
    } catch (...) {
        stay();
    }
}

FAULT_SITE void crashBadWhat() {
    std::string text;
    while (text.size() < (size_t{1} << 20)) text += "line\nline\x01\xff\n";
    throwIt(text);
}

FAULT_SITE int descend(int depth) {
    volatile char room[512];
    room[depth % 512] = static_cast<char>(depth);
    if (depth < 0) return 0;
    const int deeper = descend(depth + 1);
    return deeper + room[depth % 512];
}

FAULT_SITE void crashOverflow() {
    descend(0);
    stay();
}

FAULT_SITE void crashOverflowInThread() {
    std::thread([] {
        VLPrepareThreadForCrash();
        crashOverflow();
    }).join();
}

FAULT_SITE void crashHeap() {
    void* const memory = opaque(std::malloc(100));
    const auto release = opaque(&std::free);
    release(memory);
    release(memory);
    stay();
}

FAULT_SITE void crashInMalloc() {
    // What lies behind the last block is the size of the free rest: when it says nonsense the
    // allocator finds out as it cuts the next block off, with its lock held. It uses that lock only
    // where there are threads.
    std::thread other([] { ::pause(); });
    char* last = nullptr;
    for (int i = 0; i < 64; ++i) last = std::max(last, static_cast<char*>(std::malloc(100'000)));
    std::memset(opaque(last) + 100'000, 0x41, 32);
    opaque(std::malloc(120'000));
    other.join();
}

FAULT_SITE void crashLockedStdio() {
    std::atomic<bool> locked = false;
    std::thread holder([&] {
        ::flockfile(stdout);
        ::flockfile(stderr);
        locked = true;
        for (;;) ::pause();
    });
    while (!locked) std::this_thread::yield();
    crashNull();
    holder.join();
}

FAULT_SITE void crashInThreads(int count) {
    std::atomic<bool> go = false;
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&] {
            while (!go) std::this_thread::yield();
            crashNull();
            stay();
        });
    go = true;
    for (std::thread& thread : threads) thread.join();
}

FAULT_SITE void crashTwo() {
    crashInThreads(2);
    stay();
}

FAULT_SITE void crashTwenty() {
    crashInThreads(20);
    stay();
}

FAULT_SITE void crashBlocked() {
    sigset_t faults;
    ::sigemptyset(&faults);
    ::sigaddset(&faults, SIGSEGV);
    ::pthread_sigmask(SIG_BLOCK, &faults, nullptr);
    crashNull();
    stay();
}

FAULT_SITE void crashSmashedFrames() {
    auto* const frame = opaque(static_cast<unsigned long*>(__builtin_frame_address(0)));
    frame[0] = 0x4141414141414141;
    crashNull();
    stay();
}

FAULT_SITE void crashPipe() {
    int ends[2];
    if (::pipe(ends) != 0) return;
    ::close(ends[0]);
    if (::write(ends[1], "x", 1) != 1) stay();
}

constexpr CrashKind kinds[] = {
    {"null", "write to address 0", crashNull},
    {"wild", "write to an address that is not mapped", crashWild},
    {"readonly", "write to constant data", crashReadonly},
    {"nullcall", "call through a null pointer", crashNullcall},
    {"bus", "touch a mapping of a file that was cut", crashBus},
    {"fpe", "divide an integer by zero", crashFpe},
    {"trap", "an instruction that does not exist", crashTrap},
    {"breakpoint", "a breakpoint with no debugger", crashBreakpoint},
    {"sys", "raise SIGSYS", crashSys},
    {"abort", "abort", crashAbort},
    {"exception", "an exception that nobody catches", crashException},
    {"exception-in-thread", "the same in a thread", crashExceptionInThread},
    {"noexcept", "an exception out of a noexcept function", crashNoexcept},
    {"bad-what", "an exception with a text of 1 MiB", crashBadWhat},
    {"overflow", "endless recursion", crashOverflow},
    {"overflow-thread", "the same in a thread with an alternate stack", crashOverflowInThread},
    {"heap", "free memory twice", crashHeap},
    {"in-malloc", "a heap that the allocator finds damaged", crashInMalloc},
    {"locked-stdio", "null while another thread holds stdout and stderr", crashLockedStdio},
    {"two", "null in two threads at once", crashTwo},
    {"twenty", "null in twenty threads at once", crashTwenty},
    {"blocked", "null with the signal blocked", crashBlocked},
    {"smashed-frames", "null after the chain of frames was overwritten", crashSmashedFrames},
    {"pipe", "write to a pipe that nobody reads", crashPipe},
};

}  // namespace

std::span<const CrashKind> crashKinds() {
    return kinds;
}

const CrashKind* crashKind(std::string_view name) {
    for (const CrashKind& kind : kinds)
        if (kind.name == name) return &kind;
    return nullptr;
}
