#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "NEX/NEX+PAK/SerializationPAK/PakFormat.h"

/// What both streams have in common: bytes and a place among them. One thread at a time.
class PakStream {
 public:
    PakStream() = default;
    virtual ~PakStream() = default;
    PakStream(const PakStream&) = delete;
    PakStream& operator=(const PakStream&) = delete;

    /// The bytes of the stream. An output stream owns them (memory of malloc, freed with the
    /// stream, moved by every write); an input stream only looks at its source and never writes.
    [[nodiscard]] uint8_t* streamBuffer() const { return streamBuffer_; }
    void setStreamBuffer(uint8_t* buffer) { streamBuffer_ = buffer; }

    /// Capacity of the buffer when writing, number of bytes when reading.
    [[nodiscard]] int32_t streamSize() const { return streamSize_; }
    void setStreamSize(int32_t size) { streamSize_ = size; }

    /// The next byte to write or read.
    [[nodiscard]] int32_t cursor() const { return cursor_; }
    void setCursor(int32_t cursor) { cursor_ = cursor; }

    /// A copy of what the stream holds; nothing for the plain base.
    [[nodiscard]] virtual std::optional<PakData> data() const { return std::nullopt; }

    /// The bytes before the cursor and from the cursor on, for debugging. Fails with
    /// "_cursor <= originData.length" when the cursor lies beyond the data.
    [[nodiscard]] std::string description() const;

 protected:
    uint8_t* streamBuffer_ = nullptr;
    int32_t streamSize_ = 0;
    int32_t cursor_ = 0;
};

namespace vorla {

/// "<0a0b0c0d 0e>": bytes in hexadecimal, in groups of four.
std::string hexText(const uint8_t* bytes, size_t count);

}  // namespace vorla
