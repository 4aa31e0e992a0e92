#include "NEX/NEX+PAK/SerializationPAK/compact/PakOutputStream.h"

#include "NEX/NEX+PAK/SerializationPAK/compact/PakDecodeException.h"

namespace analyticspak {

void PakOutputStream::raiseLength(size_t length, uint8_t tag) {
    raiseDecodeLong("invalid string size, tag: %d, size: %u", tag, static_cast<unsigned>(length));
}

}  // namespace analyticspak
