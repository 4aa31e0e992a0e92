#pragma once

#include <span>
#include <string_view>

/// The ways in which the sample host can die, for trying the crash reporter.
struct CrashKind {
    std::string_view name;
    std::string_view what;
    void (*provoke)();
};

std::span<const CrashKind> crashKinds();

/// The kind of that name, or null.
const CrashKind* crashKind(std::string_view name);
