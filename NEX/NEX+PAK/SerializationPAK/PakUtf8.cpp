#include <cstdint>
#include <cstring>

#include "NEX/NEX+PAK/SerializationPAK/PakLimits.h"

namespace vorla {

bool isValidUtf8(std::string_view text) {
    const auto* at = reinterpret_cast<const uint8_t*>(text.data());
    const auto* const end = at + text.size();
    while (at < end) {
        uint64_t block = 0;
        if (end - at >= 8) {
            std::memcpy(&block, at, sizeof block);
            if ((block & 0x8080808080808080) == 0) {
                at += 8;
                continue;
            }
        }
        const uint8_t lead = *at;
        if (lead < 0x80) {
            ++at;
            continue;
        }
        const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        if (lead < 0xC2 || lead > 0xF4 || end - at <= more) return false;
        // The first byte behind the lead excludes overlong forms, surrogates and what lies above
        // U+10FFFF.
        const uint8_t low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
        const uint8_t high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
        if (at[1] < low || at[1] > high) return false;
        for (int i = 2; i <= more; ++i)
            if ((at[i] & 0xC0) != 0x80) return false;
        at += more + 1;
    }
    return true;
}

}  // namespace vorla
