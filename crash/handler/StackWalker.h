#pragma once

#include <ucontext.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace vorla::crash {

constexpr size_t mostFrames = 256;

/// An address of a stack. It is where the code stands in the first frame and in one that a signal
/// interrupted, a return address everywhere else.
struct StackEntry {
    uint64_t address;
    bool isReturn;
};

/// The registers that a walk starts from.
struct Registers {
    gregset_t values;

    explicit Registers(const ucontext_t& context);
    Registers() = default;
};

/// Walks stacks with the unwind tables of the images, through the compiler's runtime.
///
/// The runtime walks only from where it is called. So a walk is made from inside a signal handler,
/// after the registers to start from were put where the kernel keeps those of the interrupted code:
/// the runtime then finds its way through the signal's frame to whatever stack they tell of. It
/// takes no lock to find the tables and no memory, but it believes what it reads; faults in it are
/// caught, and end the walk. Where the tables end, as in code made at run time or after a call of a
/// bad pointer, the chain of frame pointers leads on, read with care.
class StackWalker {
 public:
    /// `own` is the context that the running signal handler was given. It is changed during a walk
    /// and restored at its end.
    explicit StackWalker(ucontext_t& own) : own_(&own) {}

    /// Fills `frames`, the innermost first; the number of them is returned. May run after a fault.
    size_t walk(const Registers& from, std::span<StackEntry> frames);

    /// Makes the runtime ready: its first use binds names through the loader. Not after a fault.
    static void warmUp();

 private:
    ucontext_t* own_;
};

/// The stack of the calling thread, the caller of this function first; for ordinary code.
[[gnu::noinline]] size_t walkOwnStack(std::span<StackEntry> frames);

}  // namespace vorla::crash
