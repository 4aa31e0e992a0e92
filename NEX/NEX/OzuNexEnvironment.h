#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Who we are, for the headers of requests. Any thread.
class OzuNexEnvironment {
 public:
    /// The machine identity; none when there is none.
    static std::optional<std::string> zGuid();

    /// The user agent: `zUA3`.
    static std::string zUA() { return zUA3(); }
    /// Built at the first call, the same for the rest of the process. A value that the information
    /// dictionary lacks stands as "NA", an absent "SupplyID" as "0".
    static std::string zUA3();

    static constexpr std::string_view lc() { return "3C1D07F5A29B6E4"; }
};
