#include "NEX/NEX+PAK/SerializationPAK/RequestPacket.h"

#include <mutex>

#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/PakOutputStream.h"

namespace {

constinit std::mutex requestIdLock;
constinit int32_t nextRequestId = 1000;

}  // namespace

RequestPacket::RequestPacket() : iRequestId_(generateRequestID()) {}

PakValue RequestPacket::generateRequestID() {
    const std::lock_guard lock(requestIdLock);
    return nextRequestId++;
}

void RequestPacket::__pack(PakOutputStream& stream) {
    stream.writeNumber(iVersion_, 1, true);
    stream.writeNumber(cPacketType_, 2, true);
    stream.writeNumber(iMessageType_, 3, true);
    stream.writeNumber(iRequestId_, 4, true);
    stream.writeString(sServantName_, 5);
    stream.writeString(sFuncName_, 6);
    stream.writeData(sBuffer_, 7);
    stream.writeNumber(iTimeout_, 8, true);
    stream.writeDictionary(context_, 9);
    stream.writeDictionary(status_, 10);
}

void RequestPacket::__unpack(PakInputStream& stream) {
    const PakDescription strings =
        PakPair::pairWithValue(PakClass::stringClass(), PakClass::stringClass());
    iVersion_ = stream.readNumber(1, true);
    cPacketType_ = stream.readNumber(2, true);
    iMessageType_ = stream.readNumber(3, true);
    iRequestId_ = stream.readNumber(4, true);
    sServantName_ = stream.readString(5, true).value_or("");
    sFuncName_ = stream.readString(6, true).value_or("");
    sBuffer_ = stream.readData(7, true).value_or(PakData());
    iTimeout_ = stream.readNumber(8, true);
    context_ = stream.readDictionary(9, true, strings).value_or(PakDictionary());
    status_ = stream.readDictionary(10, true, strings).value_or(PakDictionary());
}

std::string RequestPacket::headerText() const {
    return "version     : " + iVersion_.description() +
           "\npacket-type : " + cPacketType_.description() +
           "\nmessage-type: " + iMessageType_.description() +
           "\nrequest-id  : " + iRequestId_.description() + "\nservant-name: " + sServantName_ +
           "\nfunc-name   : " + sFuncName_ + "\nbuffer      : " + PakValue(sBuffer_).description() +
           "\ntimeout     : " + iTimeout_.description() +
           "\ncontext     : " + PakValue(context_).description() +
           "\nstatus      : " + PakValue(status_).description() + "\n";
}

std::string RequestPacket::description() const {
    return "\n" + headerText();
}
