#include "cinterface/services/guard.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "platform/base/VLLog.h"

namespace vorla::c {
namespace {

/// No structure of ours comes near it: a larger size is no size at all, and its end is not looked
/// for in memory.
constexpr size_t largestStructure = 4096;

/// The bytes of the character that begins here; 0 for what is none (Unicode 15, table 3-7).
size_t characterLength(std::string_view text) {
    const auto byte = [text](size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(0);
    if (first < 0x80) return 1;
    const size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < length) return 0;
    const unsigned char lowest = first == 0xe0 ? 0xa0 : first == 0xf0 ? 0x90 : 0x80;
    const unsigned char highest = first == 0xed ? 0x9f : first == 0xf4 ? 0x8f : 0xbf;
    if (byte(1) < lowest || byte(1) > highest) return 0;
    for (size_t at = 2; at < length; ++at)
        if ((byte(at) & 0xc0) != 0x80) return 0;
    return length;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const size_t length = characterLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

}  // namespace

int internalFault(const char* function, const char* what) {
    VLLogError("%s: %s", function, what);
    return VORLA_ERROR_INTERNAL;
}

int textError(std::initializer_list<const char*> texts) {
    if (std::ranges::find(texts, nullptr) != texts.end()) return VORLA_ERROR_NULL;
    return optionalTextError(texts);
}

int optionalTextError(std::initializer_list<const char*> texts) {
    const bool valid = std::ranges::all_of(texts, [](const char* t) { return !t || isUtf8(t); });
    return valid ? VORLA_OK : VORLA_ERROR_NOT_UTF8;
}

int copyText(const std::string& text, char* buffer, size_t capacity, size_t* length) {
    if (!buffer && capacity > 0) return VORLA_ERROR_NULL;
    if (length) *length = text.size();
    if (capacity == 0) return length && !buffer ? VORLA_OK : VORLA_ERROR_BUFFER_TOO_SMALL;
    size_t fits = std::min(text.size(), capacity - 1);
    // Back to where a character begins.
    if (fits < text.size())
        while (fits > 0 && (static_cast<unsigned char>(text[fits]) & 0xc0) == 0x80) --fits;
    std::copy_n(text.data(), fits, buffer);
    buffer[fits] = '\0';
    return fits == text.size() ? VORLA_OK : VORLA_ERROR_BUFFER_TOO_SMALL;
}

int optionsError(const void* given, size_t known, size_t alignment) {
    if (!given) return VORLA_ERROR_NULL;
    // A size is a multiple of the alignment, so that no field is cut in two.
    size_t size = 0;
    std::memcpy(&size, given, sizeof size);
    if (size < sizeof size || size > largestStructure || size % alignment != 0)
        return VORLA_ERROR_STRUCT_SIZE;
    const auto* bytes = static_cast<const unsigned char*>(given);
    for (size_t at = known; at < size; ++at)
        if (bytes[at] != 0) return VORLA_ERROR_UNKNOWN_OPTION;
    return VORLA_OK;
}

}  // namespace vorla::c
