#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vorla::crash {

/// Puts a text together in memory of fixed size; what does not fit is left out, from the first
/// character that does not on. The forms are those of printf. May run after a fault.
class TextBuffer {
 public:
    explicit TextBuffer(std::span<char> memory) : memory_(memory) {}

    TextBuffer& text(std::string_view value);
    /// "%lld".
    TextBuffer& decimal(int64_t value) { return number(value, 0, ' '); }
    /// "%0<width>lld"; of a negative value the sign does not count.
    TextBuffer& digits(int64_t value, size_t width) { return number(value, width, '0'); }
    /// "%#018llx".
    TextBuffer& address(uint64_t value);
    /// "%#10llx".
    TextBuffer& shortAddress(uint64_t value);
    /// Spaces up to `width` characters since the buffer held `since`.
    TextBuffer& padTo(size_t width, size_t since);
    /// A text from an unknown source, cut to `longest` bytes: line ends, other control characters
    /// and what is no UTF-8 appear as "\n", "\x1b" and so on.
    TextBuffer& escaped(std::string_view value, size_t longest);

    [[nodiscard]] std::string_view view() const { return {memory_.data(), length_}; }
    [[nodiscard]] size_t length() const { return length_; }
    void clear() {
        length_ = 0;
        full_ = false;
    }

 private:
    TextBuffer& number(int64_t value, size_t width, char fill);
    TextBuffer& hexadecimal(uint64_t value, size_t digits);

    std::span<char> memory_;
    size_t length_ = 0;
    bool full_ = false;
};

/// A short text with memory of its own.
template <size_t Size>
class ShortText : public TextBuffer {
 public:
    ShortText() : TextBuffer(characters_) {}
    ShortText(const ShortText&) = delete;
    ShortText& operator=(const ShortText&) = delete;

 private:
    char characters_[Size];
};

}  // namespace vorla::crash
