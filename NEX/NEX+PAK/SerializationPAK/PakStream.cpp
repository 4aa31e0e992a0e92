#include "NEX/NEX+PAK/SerializationPAK/PakStream.h"

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"

std::string PakStream::description() const {
    const auto bytes = data();
    if (!bytes) {
        vorla::pakAssert(cursor_ <= 0, "_cursor <= originData.length");
        return "(null) ^cursor (null)";
    }
    const bool inside = cursor_ >= 0 && static_cast<size_t>(cursor_) <= bytes->size();
    vorla::pakAssert(inside, "_cursor <= originData.length");
    const auto before = static_cast<size_t>(cursor_);
    return vorla::hexText(bytes->data(), before) + " ^cursor " +
           vorla::hexText(bytes->data() + before, bytes->size() - before);
}

namespace vorla {

std::string hexText(const uint8_t* bytes, size_t count) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text = "<";
    for (size_t i = 0; i < count; ++i) {
        if (i > 0 && i % 4 == 0) text += ' ';
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 0x0F];
    }
    return text + ">";
}

}  // namespace vorla
