#include "NEX/NEX+PAK/SerializationPAK/compact/BufferReader.h"

#include "NEX/NEX+PAK/SerializationPAK/compact/PakDecodeException.h"

namespace analyticspak {

void BufferReader::raisePeek() const {
    raiseDecode("buffer overflow when peekBuf, over %u.", static_cast<unsigned>(length_));
}

void BufferReader::raisePeekWithOffset() const {
    raiseDecode("buffer overflow when peekBuf with offset, over %u.",
                static_cast<unsigned>(length_));
}

void BufferReader::raiseSkip() const {
    raiseDecode("buffer overflow when skip, over %u.", static_cast<unsigned>(length_));
}

}  // namespace analyticspak
