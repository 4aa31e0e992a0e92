#pragma once

#include "NEX/NEX+PAK/SerializationPAK/PakFormat.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/BufferReader.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/BufferWriter.h"

namespace analyticspak {

/// The head of a field.
struct DataHead {
    uint8_t type = PAK_TYPE_NONE;
    uint8_t tag = 0;

    /// Reads the head at the reader's place without moving; gives its length in bytes.
    size_t peekFrom(const BufferReader& reader) {
        uint8_t first = 0;
        reader.peekBuf(&first, 1);
        type = first & 0x0F;
        tag = first >> 4;
        if (tag < 15) return 1;
        reader.peekBuf(&tag, 1, 1);
        return 2;
    }

    void readFrom(BufferReader& reader) { reader.skip(peekFrom(reader)); }

    void writeTo(BufferWriter& writer) const { writer.advance(storeAt(writer.reserve(8))); }

    /// Stores the head at a place with room for eight bytes; gives its length.
    size_t storeAt(uint8_t* to) const { return storeAt(to, type, tag, 0); }

    /// The same with the first bytes of the payload, the highest first, behind the head. As many of
    /// them are kept as the caller advances by.
    [[gnu::always_inline]] static size_t storeAt(uint8_t* to, uint8_t type, uint8_t tag,
                                                 uint64_t payload) {
        if (tag < 15) {
            const auto head = static_cast<uint64_t>(tag << 4 | type);
            BufferWriter::storeWord(to, head << 56 | payload >> 8);
            return 1;
        }
        const auto head = static_cast<uint64_t>(0xF0U | type) << 8 | tag;
        BufferWriter::storeWord(to, head << 48 | payload >> 16);
        return 2;
    }
};

}  // namespace analyticspak
