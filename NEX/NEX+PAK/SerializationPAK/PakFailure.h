#pragma once

#include <stdexcept>
#include <string>

/// What the catchable checks of the packet layer raise: an object was used or a packet was formed
/// in a way that its operations do not allow. The text may be empty.
class PakInconsistencyException : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// A packet whose frame contradicts the bytes that came.
class NexSerializableException : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

namespace vorla {

/// Ends the process with the given text on standard error: a check failed that only our own code
/// can break, or a trusted stream broke its promise.
[[noreturn]] void pakFail(const char* text);

/// Raises PakInconsistencyException.
[[noreturn]] void pakRaise(const std::string& text);

inline void pakAssert(bool holds, const char* text) {
    if (!holds) [[unlikely]]
        pakFail(text);
}

/// While one of these lives, `pakFail` on its thread raises PakInconsistencyException with the text
/// instead of ending the process: for reading what a peer sent with readers that trust their bytes.
/// May be nested.
class PakFailuresRaise {
 public:
    PakFailuresRaise();
    ~PakFailuresRaise();
    PakFailuresRaise(const PakFailuresRaise&) = delete;
    PakFailuresRaise& operator=(const PakFailuresRaise&) = delete;
};

/// Called by `pakFail` before the process ends. A fuzzer or a test sets one that throws, to go on
/// with the next input; null restores the plain end. Not for programs.
using PakFailureHook = void (*)(const char* text);
void setPakFailureHook(PakFailureHook hook);

}  // namespace vorla
