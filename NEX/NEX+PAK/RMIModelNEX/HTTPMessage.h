#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorla {

/// Header fields in their order; names may recur and are compared without regard to case.
using HTTPHeaderFields = std::vector<std::pair<std::string, std::string>>;

/// A request to be sent. The header fields are sent as they stand; the client adds only what the
/// protocol requires (host and length).
struct HTTPRequest {
    std::string method = "POST";
    std::string url;
    HTTPHeaderFields headerFields;
    std::vector<uint8_t> body;

    /// Replaces the field of that name, or adds it at the end.
    void setValue(std::string value, std::string_view forHTTPHeaderField);
    /// The value of the field, or empty when there is none.
    [[nodiscard]] std::string valueForHTTPHeaderField(std::string_view name) const;
};

/// What came back, as far as it came: status 0 stands for no answer at all.
struct HTTPResponse {
    long statusCode = 0;
    HTTPHeaderFields allHeaderFields;
};

/// How a request ended. The body is there, perhaps empty, when the answer arrived as a whole,
/// whatever its status; `error` says in words what went wrong and is empty if nothing did.
struct HTTPResult {
    HTTPResponse response;
    std::optional<std::vector<uint8_t>> body;
    std::string error;
};

/// Lower-case for the letters A to Z, nothing else.
std::string asciiLowercase(std::string_view text);

}  // namespace vorla
