#include "crash/handler/TextBuffer.h"

#include <algorithm>
#include <cstring>

namespace vorla::crash {
namespace {

constexpr char hexDigits[] = "0123456789abcdef";

size_t hexLength(uint64_t value) {
    return value == 0 ? 1 : (64 - static_cast<size_t>(__builtin_clzll(value)) + 3) / 4;
}

/// The length of the well-formed UTF-8 sequence that the text starts with; 0 when there is none.
size_t utf8Sequence(std::string_view text) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80) return 1;
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
    for (size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    const bool overlong = (first == 0xE0 && byte(1) < 0xA0) || (first == 0xF0 && byte(1) < 0x90);
    const bool beyond = (first == 0xED && byte(1) > 0x9F) || (first == 0xF4 && byte(1) > 0x8F);
    return overlong || beyond ? 0 : length;
}

}  // namespace

TextBuffer& TextBuffer::text(std::string_view value) {
    if (full_) return *this;
    const size_t room = memory_.size() - length_;
    full_ = value.size() > room;
    const size_t taken = std::min(value.size(), room);
    if (taken) std::memcpy(memory_.data() + length_, value.data(), taken);
    length_ += taken;
    return *this;
}

TextBuffer& TextBuffer::number(int64_t value, size_t width, char fill) {
    char reversed[32];
    size_t count = 0;
    uint64_t rest = value < 0 ? -static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    do {
        reversed[count++] = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest);
    while (count < std::min(width, sizeof reversed - 1)) reversed[count++] = fill;
    if (value < 0) reversed[count++] = '-';
    std::reverse(reversed, reversed + count);
    return text({reversed, count});
}

TextBuffer& TextBuffer::hexadecimal(uint64_t value, size_t digits) {
    char characters[16];
    for (size_t i = 0; i < digits; ++i)
        characters[i] = hexDigits[value >> (4 * (digits - 1 - i)) & 0xF];
    return text({characters, digits});
}

TextBuffer& TextBuffer::address(uint64_t value) {
    // The zero has no "0x" in this form, and its width is filled up with zeros all the same.
    return text(value == 0 ? "00" : "0x").hexadecimal(value, 16);
}

TextBuffer& TextBuffer::shortAddress(uint64_t value) {
    const size_t digits = hexLength(value);
    const size_t width = digits + (value == 0 ? 0 : 2);
    for (size_t i = width; i < 10; ++i) text(" ");
    return text(value == 0 ? "" : "0x").hexadecimal(value, digits);
}

TextBuffer& TextBuffer::padTo(size_t width, size_t since) {
    while (!full_ && length_ - since < width) text(" ");
    return *this;
}

TextBuffer& TextBuffer::escaped(std::string_view value, size_t longest) {
    value = value.substr(0, longest);
    while (!value.empty()) {
        size_t length = utf8Sequence(value);
        const auto byte = static_cast<unsigned char>(value[0]);
        if (byte == '\n') {
            text("\\n");
        } else if (length == 0 || byte < 0x20 || byte == 0x7F) {
            text("\\x").hexadecimal(byte, 2);
            length = 1;
        } else {
            text(value.substr(0, length));
        }
        value.remove_prefix(length);
    }
    return *this;
}

}  // namespace vorla::crash
