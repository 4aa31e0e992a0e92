#pragma once

#include <exception>
#include <string>

/// An error that the host has survived, and wants to be reported like a crash. Any thread.
class CaughtError {
 public:
    /// What the exception says, and the host's message about it.
    CaughtError(const std::exception& exception, const std::string& message);
    /// An error in the host's own words. Without `stacks` the calling thread's stack is taken, and
    /// without `threads` those of all threads.
    CaughtError(std::string errorName, std::string message, std::string stacks,
                std::string threads);

    /// Records the error and returns, whatever the name says. It leaves what a crash leaves, but
    /// for the report; threads that have to be held still are so for less than a millisecond each.
    /// Returns whether a record was made.
    bool throwException() const;

 private:
    std::string errorName_;
    std::string reason_;
    std::string stacks_;
    std::string threads_;
};
