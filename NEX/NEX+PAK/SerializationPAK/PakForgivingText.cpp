#include <algorithm>

#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"

namespace {

void appendUtf8(std::string& text, char32_t c) {
    if (c < 0x80) {
        text += static_cast<char>(c);
        return;
    }
    const int more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    static constexpr uint8_t kLeads[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(kLeads[more] | (c >> (6 * more)));
    for (int i = more - 1; i >= 0; --i) text += static_cast<char>(0x80 | ((c >> (6 * i)) & 0x3F));
}

/// A surrogate without its other half, which UTF-8 cannot hold, becomes U+FFFD.
std::string utf8OfUnits(std::u16string_view units) {
    std::string text;
    for (size_t i = 0; i < units.size(); ++i) {
        char32_t c = units[i];
        const bool high = c >= 0xD800 && c < 0xDC00, low = c >= 0xDC00 && c < 0xE000;
        if (high && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (units[++i] - 0xDC00U);
        else if (high || low)
            c = 0xFFFD;
        appendUtf8(text, c);
    }
    return text;
}

}  // namespace

std::optional<std::u16string> PakInputStream::utf8Decode(const uint8_t* bytes, int32_t length) {
    if (!bytes || length < 1) return std::nullopt;
    std::u16string units;
    const auto append = [&](uint32_t value) {
        if (const auto unit = static_cast<char16_t>(value)) units += unit;
    };
    for (int32_t i = 0; i < length;) {
        const uint8_t* const b = bytes + i;
        const int width = (b[0] & 0x80) == 0      ? 1
                          : (b[0] & 0xE0) == 0xC0 ? 2
                          : (b[0] & 0xF0) == 0xE0 ? 3
                          : (b[0] & 0xF8) == 0xF0 ? 4
                                                  : 5;
        if (width <= length - i) {
            switch (width) {
                case 1:
                    units += static_cast<char16_t>(b[0]);
                    break;
                case 2:
                    append((b[0] & 0x3FU) << 6 | (b[1] & 0x3FU));
                    break;
                case 3:
                    append(uint32_t{b[0]} << 12 | (b[1] & 0x3FU) << 6 | (b[2] & 0x3FU));
                    break;
                case 4:
                    append(uint32_t{b[1]} << 12 | (b[2] & 0x3FU) << 6 | (b[3] & 0x3FU));
                    break;
                default:
                    append(uint32_t{b[2]} << 12 | (b[3] & 0x3FU) << 6 | (b[4] & 0x3FU));
                    break;
            }
        }
        i += std::min(width, length - i);
    }
    return units;
}

std::optional<std::string> PakInputStream::readUTF8String(int32_t tag, bool required,
                                                          const PakDescription& /*description*/) {
    auto text = readString(tag, required);
    if (text && !text->empty()) return text;
    if (stringLength_ < 1 || cursor_ < stringLength_ || cursor_ > streamSize_) return std::nullopt;
    const auto units = utf8Decode(streamBuffer_ + (cursor_ - stringLength_), stringLength_);
    if (!units) return std::nullopt;
    return utf8OfUnits(*units);
}
