#include "crash/handler/AlternateStack.h"

#include <sys/auxv.h>
#include <sys/mman.h>
#include <unistd.h>
#include <csignal>

#include <cstddef>

#include <vorla/VLPrepareThreadForCrash.h>

namespace vorla::crash {
namespace {

/// What the handler needs at the least: it fills 40 KiB of it.
constexpr size_t handlerSize = 65536;

size_t pageSize() {
    return static_cast<size_t>(::sysconf(_SC_PAGESIZE));
}

size_t stackSize() {
    const size_t frame = ::getauxval(AT_MINSIGSTKSZ);
    return (handlerSize + 2 * frame + pageSize() - 1) / pageSize() * pageSize();
}

/// One thread's stack, and the one it had before.
class ThreadStack {
 public:
    ThreadStack() = default;
    ThreadStack(const ThreadStack&) = delete;
    ThreadStack& operator=(const ThreadStack&) = delete;
    ~ThreadStack() { drop(); }

    bool take() {
        stack_t present{};
        if (::sigaltstack(nullptr, &present) != 0) return false;
        if ((present.ss_flags & SS_DISABLE) == 0 && present.ss_size >= stackSize()) return true;
        if (memory_) return false;
        const size_t guard = pageSize();
        const size_t size = stackSize();
        void* const memory = ::mmap(nullptr, guard + size, PROT_NONE,
                                    MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (memory == MAP_FAILED) return false;
        auto* const bottom = static_cast<char*>(memory) + guard;
        const stack_t own{.ss_sp = bottom, .ss_flags = 0, .ss_size = size};
        if (::mprotect(bottom, size, PROT_READ | PROT_WRITE) != 0 ||
            ::sigaltstack(&own, &before_) != 0) {
            ::munmap(memory, guard + size);
            return false;
        }
        memory_ = memory;
        size_ = guard + size;
        return true;
    }

    void drop() {
        if (!memory_) return;
        stack_t present{};
        ::sigaltstack(nullptr, &present);
        const bool isOurs = present.ss_sp == static_cast<char*>(memory_) + pageSize();
        // While it is in use the system refuses to take it away: then it stays.
        if (isOurs && ::sigaltstack(&before_, nullptr) != 0) return;
        ::munmap(memory_, size_);
        memory_ = nullptr;
    }

 private:
    void* memory_ = nullptr;
    size_t size_ = 0;
    stack_t before_{};
};

thread_local ThreadStack threadStack;

}  // namespace

bool takeAlternateStack() {
    return threadStack.take();
}

void dropAlternateStack() {
    threadStack.drop();
}

}  // namespace vorla::crash

bool VLPrepareThreadForCrash() {
    return vorla::crash::takeAlternateStack();
}
