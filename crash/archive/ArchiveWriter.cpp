#include "crash/archive/ArchiveWriter.h"

namespace vorla {

void ArchiveWriter::head(uint8_t major, uint64_t argument) {
    uint8_t encoded[9];
    const auto type = static_cast<uint8_t>(major << 5U);
    size_t width = 0;
    if (argument < 24) {
        encoded[0] = static_cast<uint8_t>(type | argument);
    } else {
        const unsigned log = argument <= 0xFF     ? 0
                             : argument <= 0xFFFF ? 1
                             : argument >> 32U    ? 3
                                                  : 2;
        encoded[0] = static_cast<uint8_t>(type | (24 + log));
        width = size_t{1} << log;
    }
    for (size_t i = 0; i < width; ++i)
        encoded[1 + i] = static_cast<uint8_t>(argument >> (8 * (width - 1 - i)));
    sink_(context_, encoded, 1 + width);
}

void ArchiveWriter::integer(int64_t value) {
    if (value >= 0)
        head(0, static_cast<uint64_t>(value));
    else
        head(1, ~static_cast<uint64_t>(value));
}

void ArchiveWriter::text(std::string_view value) {
    textHead(value.size());
    sink_(context_, value.data(), value.size());
}

void ArchiveWriter::bytes(std::span<const uint8_t> value) {
    bytesHead(value.size());
    sink_(context_, value.data(), value.size());
}

}  // namespace vorla
