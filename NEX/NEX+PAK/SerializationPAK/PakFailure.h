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

/// Ends the process with the given text, and the place where it came to that, on standard error: a
/// check failed that only our own code can break, or a trusted stream broke its promise.
[[noreturn]] void pakFail(const char* text);

/// Raises PakInconsistencyException.
[[noreturn]] void pakRaise(const std::string& text);

inline void pakAssert(bool holds, const char* text) {
    if (!holds) [[unlikely]]
        pakFail(text);
}

/// While one of these lives, `pakFail` on its thread raises PakInconsistencyException with both
/// instead of ending the process: for reading what a peer sent with readers that trust their bytes.
/// May be nested.
class PakFailuresRaise {
 public:
    PakFailuresRaise();
    ~PakFailuresRaise();
    PakFailuresRaise(const PakFailuresRaise&) = delete;
    PakFailuresRaise& operator=(const PakFailuresRaise&) = delete;
};

/// Whether a failed check is caught on this thread, by one of those or by a hook.
bool pakFailuresAreCaught();

/// The structure that is being written or read on this thread, and which of its fields, so that a
/// failed check can name them. Lives on the stack.
class PakPlace {
 public:
    explicit PakPlace(const char* className);
    ~PakPlace();
    PakPlace(const PakPlace&) = delete;
    PakPlace& operator=(const PakPlace&) = delete;

    void setField(const char* storageName) { field_ = storageName; }
    /// " at Outer.field, Inner.field", or empty outside of any structure.
    static std::string description();

 private:
    const char* className_;
    const char* field_ = "";
    PakPlace* outer_;
};

/// Called by `pakFail` before the process ends. A fuzzer or a test sets one that throws, to go on
/// with the next input; null restores the plain end. Not for programs.
using PakFailureHook = void (*)(const char* text);
void setPakFailureHook(PakFailureHook hook);

}  // namespace vorla
