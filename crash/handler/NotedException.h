#pragma once

#include <sys/types.h>

#include <cstddef>
#include <span>
#include <string_view>

#include "crash/handler/StackWalker.h"

namespace vorla::crash {

/// What is known of the exception that nobody caught, for the abort that follows it. Kept in
/// memory of its own, for the process is in no good state then.
struct NotedException {
    std::string_view type;
    std::string_view reason;
    std::span<const StackEntry> stack;
};

/// Keeps the facts for the calling thread; the first thread's stay. The texts are escaped and cut.
void noteException(std::string_view type, std::string_view reason,
                   std::span<const StackEntry> stack);

/// What the calling thread has noted, or null. May run after a fault.
const NotedException* notedException();

}  // namespace vorla::crash
