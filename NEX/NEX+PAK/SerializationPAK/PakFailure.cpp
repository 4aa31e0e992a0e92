#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace vorla {
namespace {

std::atomic<PakFailureHook> failureHook{nullptr};
thread_local int raisingScopes = 0;
thread_local PakPlace* innermostPlace = nullptr;

}  // namespace

void pakFail(const char* text) {
    if (const PakFailureHook hook = failureHook.load()) hook(text);
    const std::string place = PakPlace::description();
    if (raisingScopes > 0) pakRaise(text + place);
    std::fprintf(stderr, "Assertion failed: (%s)%s\n", text, place.c_str());
    std::abort();
}

PakFailuresRaise::PakFailuresRaise() {
    ++raisingScopes;
}
PakFailuresRaise::~PakFailuresRaise() {
    --raisingScopes;
}

bool pakFailuresAreCaught() {
    return raisingScopes > 0 || failureHook.load() != nullptr;
}

PakPlace::PakPlace(const char* className) : className_(className), outer_(innermostPlace) {
    innermostPlace = this;
}

PakPlace::~PakPlace() {
    innermostPlace = outer_;
}

std::string PakPlace::description() {
    std::string path;
    for (const PakPlace* place = innermostPlace; place; place = place->outer_)
        path = std::string(path.empty() ? "" : ", ")
                   .insert(0, std::string(place->className_) + "." + place->field_) +
               path;
    return path.empty() ? path : " at " + path;
}

void pakRaise(const std::string& text) {
    throw PakInconsistencyException(text);
}

void setPakFailureHook(PakFailureHook hook) {
    failureHook.store(hook);
}

}  // namespace vorla
