#include "NEX/NEX+PAK/SerializationPAK/compact/RequestPacket.h"

namespace analyticspak {

void RequestPacket::writeTo(PakOutputStream& stream) const {
    stream.write(iVersion, 1);
    stream.write(cPacketType, 2);
    stream.write(iMessageType, 3);
    stream.write(iRequestId, 4);
    stream.write(sServantName, 5);
    stream.write(sFuncName, 6);
    stream.write(sBuffer, 7);
    stream.write(iTimeout, 8);
    stream.write(context, 9);
    stream.write(status, 10);
}

void RequestPacket::readFrom(PakInputStream& stream) {
    stream.read(iVersion, 1, true);
    stream.read(cPacketType, 2, false);
    stream.read(iMessageType, 3, false);
    stream.read(iRequestId, 4, true);
    stream.read(sServantName, 5, true);
    stream.read(sFuncName, 6, true);
    stream.read(sBuffer, 7, true);
    stream.read(iTimeout, 8, false);
    stream.read(context, 9, false);
    stream.read(status, 10, false);
}

}  // namespace analyticspak
