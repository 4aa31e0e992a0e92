#pragma once

#include <string>

#include "NEX/NEX+PAK/SerializationPAK/compact/RequestPacket.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/ZenAttribute.h"

namespace analyticsnex {

/// A whole call or reply: four bytes of length (big-endian, these four included) and the ten fields
/// of the header, whose `sBuffer` holds the attributes. One thread at a time.
class ZenPacket : public analyticspak::RequestPacket {
 public:
    [[nodiscard]] ZenAttribute& attributes() { return attributes_; }
    [[nodiscard]] const ZenAttribute& attributes() const { return attributes_; }

    /// Raises std::runtime_error with "ServantName must not be empty" or "FuncName must not be
    /// empty".
    [[nodiscard]] std::string encode();

    /// Takes over a packet from anywhere. The length at its start is not compared with the bytes
    /// that came. Raises std::runtime_error with "packet length too short" below four bytes and
    /// PakDecodeException for all else; the packet is then partly read.
    void decode(const void* bytes, size_t length);

 private:
    void doEncode(analyticspak::PakOutputStream& stream);

    ZenAttribute attributes_;
};

}  // namespace analyticsnex
