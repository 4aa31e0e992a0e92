#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"

#include <stdexcept>

namespace analyticsnex {
namespace {

constexpr size_t kLengthBytes = 4;

}  // namespace

std::string ZenPacket::encode() {
    analyticspak::PakOutputStream stream;
    doEncode(stream);
    std::string packet(kLengthBytes + stream.length(), '\0');
    pack_32(reinterpret_cast<uint8_t*>(packet.data()), static_cast<int32_t>(packet.size()));
    std::memcpy(packet.data() + kLengthBytes, stream.bytes().data(), stream.length());
    return packet;
}

void ZenPacket::doEncode(analyticspak::PakOutputStream& stream) {
    if (sServantName.empty()) throw std::runtime_error("ServantName must not be empty");
    if (sFuncName.empty()) throw std::runtime_error("FuncName must not be empty");
    sBuffer = attributes_.toBytes();
    writeTo(stream);
}

void ZenPacket::decode(const void* bytes, size_t length) {
    if (length < kLengthBytes) throw std::runtime_error("packet length too short");
    analyticspak::PakInputStream stream(static_cast<const uint8_t*>(bytes) + kLengthBytes,
                                        length - kLengthBytes);
    readFrom(stream);
    attributes_.fromBytes(sBuffer);
}

}  // namespace analyticsnex
