#pragma once

#include <optional>
#include <string_view>

#include "NEX/NEX+PAK/SerializationPAK/PakValue.h"

// Checks of the storage names in PAK_FIELD lines, made while compiling. A name without the prefix
// is that of a field which is not encoded, and always right.
namespace vorla {

inline constexpr std::string_view kPakPrefix = "pakv2_p_";
inline constexpr std::string_view kPakExtMarker = "__b0x9i_";

/// What the storage name of a container has to describe: 'V' for a list, 'M' for a map; 0 for types
/// that are no containers.
template <typename T>
inline constexpr char kPakContainer = 0;
template <>
inline constexpr char kPakContainer<PakArray> = 'V';
template <>
inline constexpr char kPakContainer<PakDictionary> = 'M';
template <typename T>
inline constexpr char kPakContainer<std::optional<T>> = kPakContainer<T>;

/// The tag stands behind the prefix in decimal and fits into a head.
constexpr bool pakTagFits(std::string_view storage) {
    if (!storage.starts_with(kPakPrefix)) return true;
    storage.remove_prefix(kPakPrefix.size());
    const std::string_view digits = storage.substr(0, storage.find('_'));
    int tag = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') return false;
        tag = tag * 10 + (c - '0');
        if (tag > 255) return false;
    }
    return !digits.empty();
}

/// Behind the tag stand a word (r for required) and the field's name.
constexpr bool pakNameFits(std::string_view storage, std::string_view field) {
    if (!storage.starts_with(kPakPrefix)) return true;
    storage = storage.substr(0, storage.find(kPakExtMarker));
    storage.remove_prefix(kPakPrefix.size());
    for (int part = 0; part < 2; ++part) {
        const size_t end = storage.find('_');
        if (end == 0 || end == std::string_view::npos) return false;
        storage.remove_prefix(end + 1);
    }
    return storage == field;
}

constexpr bool pakDescribes(std::string_view text) {
    if (text.empty()) return false;
    if (text[0] == 'O') return text.size() > 1;
    if (text[0] == 'V') return pakDescribes(text.substr(1));
    if (text[0] != 'M' || text.size() < 3) return false;
    const int tens = text[1] - '0', ones = text[2] - '0';
    if (tens < 0 || tens > 9 || ones < 0 || ones > 9) return false;
    const auto length = static_cast<size_t>(tens * 10 + ones);
    return text.size() >= 3 + length && pakDescribes(text.substr(3, length)) &&
           pakDescribes(text.substr(3 + length));
}

/// A list or map, and nothing else, says what it holds.
constexpr bool pakContentsFit(std::string_view storage, char container) {
    if (!storage.starts_with(kPakPrefix)) return true;
    const size_t marker = storage.find(kPakExtMarker);
    if (marker == std::string_view::npos) return container == 0;
    const std::string_view text = storage.substr(marker + kPakExtMarker.size());
    return container != 0 && text.starts_with(container) && text.size() < 128 && pakDescribes(text);
}

}  // namespace vorla
