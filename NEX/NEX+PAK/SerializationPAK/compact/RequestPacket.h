#pragma once

#include <map>
#include <string>

#include "NEX/NEX+PAK/SerializationPAK/compact/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/PakOutputStream.h"

namespace analyticspak {

/// The header of a call or a reply, with the tags 1 to 10 in the order below. Stored and sent:
/// never renumber. All fields are written; a reader requires 1 and 4 to 7.
struct RequestPacket {
    int16_t iVersion = 2;
    char cPacketType = 0;
    int32_t iMessageType = 0;
    int32_t iRequestId = 0;
    std::string sServantName;
    std::string sFuncName;
    PakData sBuffer;
    int32_t iTimeout = 0;
    std::map<std::string, std::string> context;
    std::map<std::string, std::string> status;

    void writeTo(PakOutputStream& stream) const;
    /// Raises PakDecodeException, and the fields are then partly read.
    void readFrom(PakInputStream& stream);
};

}  // namespace analyticspak
