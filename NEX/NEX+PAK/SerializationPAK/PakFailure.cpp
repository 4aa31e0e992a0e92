#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace vorla {
namespace {

std::atomic<PakFailureHook> failureHook{nullptr};

}  // namespace

void pakFail(const char* text) {
    if (const PakFailureHook hook = failureHook.load()) hook(text);
    std::fprintf(stderr, "Assertion failed: (%s)\n", text);
    std::abort();
}

void pakRaise(const std::string& text) {
    throw PakInconsistencyException(text);
}

void setPakFailureHook(PakFailureHook hook) {
    failureHook.store(hook);
}

}  // namespace vorla
