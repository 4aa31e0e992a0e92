#include "NEX/common/CCCrypt/utf8.h"

namespace vorla {

std::optional<std::vector<uint8_t>> latin1FromUtf8(std::string_view text, size_t most) {
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < text.size() && bytes.size() < most; ++i) {
        const auto first = static_cast<uint8_t>(text[i]);
        if (first < 0x80) {
            bytes.push_back(first);
            continue;
        }
        // U+0080 to U+00FF are the two-byte sequences that begin with C2 or C3.
        const auto second = i + 1 < text.size() ? static_cast<uint8_t>(text[i + 1]) : uint8_t{0};
        if ((first != 0xC2 && first != 0xC3) || (second & 0xC0U) != 0x80) return std::nullopt;
        bytes.push_back(static_cast<uint8_t>(((first & 0x03U) << 6U) | (second & 0x3FU)));
        ++i;
    }
    return bytes;
}

std::string utf8FromLatin1(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<uint8_t>(c);
        if (byte < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0U | (byte >> 6U));
            text += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return text;
}

size_t utf16Length(std::string_view text) {
    size_t length = 0;
    for (const char c : text) {
        const auto byte = static_cast<uint8_t>(c);
        if ((byte & 0xC0U) != 0x80) ++length;
        if (byte >= 0xF0) ++length;
    }
    return length;
}

}  // namespace vorla
