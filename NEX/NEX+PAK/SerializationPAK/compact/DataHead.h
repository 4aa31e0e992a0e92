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

    void writeTo(BufferWriter& writer) const {
        uint8_t* const to = writer.reserve(2);
        if (tag < 15) {
            to[0] = static_cast<uint8_t>(tag << 4 | type);
            writer.advance(1);
        } else {
            to[0] = static_cast<uint8_t>(0xF0 | type);
            to[1] = tag;
            writer.advance(2);
        }
    }
};

}  // namespace analyticspak
