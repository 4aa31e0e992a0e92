#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace vorla {
namespace {

std::atomic<PakFailureHook> failureHook{nullptr};
thread_local int raisingScopes = 0;

}  // namespace

void pakFail(const char* text) {
    if (const PakFailureHook hook = failureHook.load()) hook(text);
    if (raisingScopes > 0) pakRaise(text);
    std::fprintf(stderr, "Assertion failed: (%s)\n", text);
    std::abort();
}

PakFailuresRaise::PakFailuresRaise() {
    ++raisingScopes;
}
PakFailuresRaise::~PakFailuresRaise() {
    --raisingScopes;
}

void pakRaise(const std::string& text) {
    throw PakInconsistencyException(text);
}

void setPakFailureHook(PakFailureHook hook) {
    failureHook.store(hook);
}

}  // namespace vorla
