#pragma once

#include <stdexcept>

namespace analyticspak {

/// Bytes that are no encoding of what was asked for, or a value too large to be encoded.
class PakDecodeException : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

/// Raise the exception with a printed text, cut to 63 characters (127 for the long form).
[[noreturn, gnu::format(printf, 1, 2)]] void raiseDecode(const char* format, ...);
[[noreturn, gnu::format(printf, 1, 2)]] void raiseDecodeLong(const char* format, ...);

}  // namespace analyticspak
