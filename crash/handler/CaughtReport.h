#pragma once

#include <string>
#include <string_view>

namespace vorla::crash {

/// What is known of an error that was caught.
struct CaughtFacts {
    std::string_view type;
    std::string_view error;
    /// Empty for the calling thread's own.
    std::string_view stack;
    /// Whether the stacks of all threads are to be collected.
    bool threads = true;
};

/// Stores a record of the error in the way of a crash. Ordinary code, one at a time. Threads are
/// held still only while the signal handlers are in place, which guard the walk of their stacks.
/// False, with nothing stored, for an error that is reported by who hears of another one, and after
/// two seconds of waiting for another report.
bool reportCaught(const CaughtFacts& facts);

/// The latest caught error; empty texts before the first one.
struct LatestCaught {
    std::string type, error, stack;
};
LatestCaught latestCaught();

}  // namespace vorla::crash
