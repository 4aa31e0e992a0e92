#pragma once

#include <cstddef>
#include <cstdint>

namespace vorla::crash {

/// Calls `work` so that a fault in it ends only the work: false is returned then. For reading what
/// a crash may have destroyed, through code that does not check its reads. The work must hold
/// nothing that is not lost without harm. Not nested. May run after a fault.
bool runShielded(void (*work)(void*), void* argument);

template <typename Work>
bool runShielded(Work work) {
    return runShielded([](void* argument) { (*static_cast<Work*>(argument))(); }, &work);
}

/// For the signal handler: if the calling thread is in shielded work, does not return.
void leaveShieldedWork();

/// Copies memory of this process from an address that may be bad; false, with what is at `to`
/// undefined, when it is. May run after a fault, also within shielded work.
bool readMemory(uintptr_t from, void* to, size_t size);

template <typename T>
bool readMemory(uintptr_t from, T& to) {
    return readMemory(from, &to, sizeof to);
}

}  // namespace vorla::crash
