// Loaded in front of a program, ends it with status 99 as soon as the C library's allocator is used
// on an alternate signal stack: nothing but the crash handler runs there.

#include <signal.h>
#include <unistd.h>

#include <cstddef>

namespace {

void check() {
    stack_t stack{};
    if (::sigaltstack(nullptr, &stack) != 0 || (stack.ss_flags & SS_ONSTACK) == 0) return;
    constexpr char text[] = "allocation in the crash handler\n";
    (void)!::write(STDERR_FILENO, text, sizeof text - 1);
    ::_exit(99);
}

}  // namespace

extern "C" {

// The allocator's own names, which the interposed functions hand on to without looking them up.
void* __libc_malloc(size_t);
void __libc_free(void*);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);

void* malloc(size_t size) {
    check();
    return __libc_malloc(size);
}
void free(void* memory) {
    check();
    __libc_free(memory);
}
void* calloc(size_t count, size_t size) {
    check();
    return __libc_calloc(count, size);
}
void* realloc(void* memory, size_t size) {
    check();
    return __libc_realloc(memory, size);
}
void* memalign(size_t alignment, size_t size) {
    check();
    return __libc_memalign(alignment, size);
}
void* aligned_alloc(size_t alignment, size_t size) {
    check();
    return __libc_memalign(alignment, size);
}
}
