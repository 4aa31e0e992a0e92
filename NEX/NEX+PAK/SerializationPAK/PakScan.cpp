#include "NEX/NEX+PAK/SerializationPAK/PakScan.h"

#include <cstring>

#include "NEX/NEX+PAK/SerializationPAK/PakFormat.h"

namespace vorla {
namespace {

/// Walks over fields; every step is false, and the place undefined, when the bytes end too early.
class Walker {
 public:
    explicit Walker(std::span<const uint8_t> bytes)
        : at_(bytes.data()), end_(bytes.data() + bytes.size()) {}

    bool passField(int nesting) {
        int type = 0;
        return passHead(type) && passPayload(type, nesting);
    }

 private:
    bool pass(uint64_t count) {
        if (count > static_cast<uint64_t>(end_ - at_)) return false;
        at_ += count;
        return true;
    }

    bool passHead(int& type) {
        if (at_ == end_) return false;
        type = *at_ & 0x0F;
        return pass(*at_ >= 0xF0 ? 2 : 1);
    }

    bool passBigEndian(int width, int64_t& value) {
        const uint8_t* from = at_;
        if (!pass(static_cast<uint64_t>(width))) return false;
        value = static_cast<int8_t>(*from);
        for (int i = 1; i < width; ++i)
            value = static_cast<int64_t>(static_cast<uint64_t>(value) << 8 | from[i]);
        return true;
    }

    bool passCount(int64_t& count) {
        int type = 0;
        if (!passHead(type)) return false;
        count = 0;
        if (type == PAK_TYPE_ZERO) return true;
        return type <= PAK_TYPE_INT8 && passBigEndian(1 << type, count);
    }

    bool passFields(int64_t count, int nesting) {
        for (; count > 0; --count)
            if (!passField(nesting)) return false;
        return true;
    }

    bool passStructure(int nesting) {
        for (int type = 0; passHead(type);) {
            if (type == PAK_TYPE_STRUCT_E) return true;
            if (!passPayload(type, nesting)) return false;
        }
        return false;
    }

    bool passPayload(int type, int nesting) {
        const bool container =
            type == PAK_TYPE_MAP || type == PAK_TYPE_LIST || type == PAK_TYPE_STRUCT_S;
        if (container && nesting <= 0) return false;
        int64_t count = 0;
        switch (type) {
            case PAK_TYPE_INT1:
                return pass(1);
            case PAK_TYPE_INT2:
                return pass(2);
            case PAK_TYPE_INT4:
            case PAK_TYPE_FLOAT:
                return pass(4);
            case PAK_TYPE_INT8:
            case PAK_TYPE_DOUBLE:
                return pass(8);
            case PAK_TYPE_STRING1:
                return passBigEndian(1, count) && pass(count & 0xFF);
            case PAK_TYPE_STRING4:
                return passBigEndian(4, count) && pass(count & 0xFFFFFFFF);
            case PAK_TYPE_MAP:
                // Two passes instead of twice the count, which may be any 64-bit number.
                return passCount(count) && passFields(count, nesting - 1) &&
                       passFields(count, nesting - 1);
            case PAK_TYPE_LIST:
                return passCount(count) && passFields(count, nesting - 1);
            case PAK_TYPE_STRUCT_S:
                return passStructure(nesting - 1);
            case PAK_TYPE_STRUCT_E:
            case PAK_TYPE_ZERO:
                return true;
            case PAK_TYPE_SIMPLE_LIST:
                return passHead(type) && type == PAK_TYPE_INT1 && passCount(count) &&
                       pass(static_cast<uint64_t>(count));
            default:
                return false;
        }
    }

    const uint8_t* at_;
    const uint8_t* end_;
};

}  // namespace

size_t countWholeFields(std::span<const uint8_t> bytes, size_t atMost) {
    Walker walker(bytes);
    size_t count = 0;
    while (count < atMost && walker.passField(PakLimits::kNestingCompact)) ++count;
    return count;
}

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
