#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

/// The base of helpers for enumerations that travel as names. Each enumeration has a subclass whose
/// name is the enumeration's and six letters of suffix:
///
///     struct ZBColorHelper : PakEnumHelper<ZBColorHelper> {
///         static constexpr std::string_view className = "ZBColorHelper";
///         static std::optional<std::string> etos(int64_t value);  // "ZBColor_Red", or ""
///         static int64_t stoe(std::string_view name);
///     };
template <typename Helper>
struct PakEnumHelper {
    static constexpr size_t kSuffixLength = 6;

    /// The full name of a constant, empty for an unknown value; the base knows none.
    static std::optional<std::string> etos(int64_t /*value*/) { return std::nullopt; }
    /// The value of a full name; the base returns the smallest number.
    static int64_t stoe(std::string_view /*name*/) { return std::numeric_limits<int64_t>::min(); }

    /// The name without the enumeration's name and the underscore; nothing for an unknown value.
    static std::optional<std::string> eto_s(int64_t value) {
        const auto full = Helper::etos(value);
        const size_t start = Helper::className.size() - (kSuffixLength - 1);
        if (!full || full->empty() || full->size() < start) return std::nullopt;
        return full->substr(start);
    }

    /// The value of such a short name.
    static int64_t _stoe(std::string_view shortName) {
        std::string full(Helper::className.substr(0, Helper::className.size() - kSuffixLength));
        return Helper::stoe(full.append("_").append(shortName));
    }
};
