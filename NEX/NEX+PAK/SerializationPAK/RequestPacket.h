#pragma once

#include <string>

#include "NEX/NEX+PAK/SerializationPAK/PakObject.h"

/// The header of a call or a reply: ten fields, all required, with the tags 1 to 10 in the order
/// below. Stored and sent: never renumber.
class RequestPacket : public PakObject {
    PAK_OBJECT(RequestPacket, PakObject, nullptr)

    RequestPacket();

    /// The next request id of the process; the first is 1000. Any thread.
    static PakValue generateRequestID();

    // Numbers keep the stored type that they came with; they are reduced in width when written.
    [[nodiscard]] const PakValue& iVersion() const { return iVersion_; }
    void setIVersion(PakValue value) { iVersion_ = std::move(value); }
    [[nodiscard]] const PakValue& cPacketType() const { return cPacketType_; }
    void setCPacketType(PakValue value) { cPacketType_ = std::move(value); }
    [[nodiscard]] const PakValue& iMessageType() const { return iMessageType_; }
    void setIMessageType(PakValue value) { iMessageType_ = std::move(value); }
    [[nodiscard]] const PakValue& iRequestId() const { return iRequestId_; }
    void setIRequestId(PakValue value) { iRequestId_ = std::move(value); }
    [[nodiscard]] const std::string& sServantName() const { return sServantName_; }
    void setSServantName(std::string value) { sServantName_ = std::move(value); }
    [[nodiscard]] const std::string& sFuncName() const { return sFuncName_; }
    void setSFuncName(std::string value) { sFuncName_ = std::move(value); }
    [[nodiscard]] const PakData& sBuffer() const { return sBuffer_; }
    void setSBuffer(PakData value) { sBuffer_ = std::move(value); }
    [[nodiscard]] const PakValue& iTimeout() const { return iTimeout_; }
    void setITimeout(PakValue value) { iTimeout_ = std::move(value); }
    /// From string to string.
    [[nodiscard]] const PakDictionary& context() const { return context_; }
    void setContext(PakDictionary value) { context_ = std::move(value); }
    [[nodiscard]] const PakDictionary& status() const { return status_; }
    void setStatus(PakDictionary value) { status_ = std::move(value); }

    void __pack(PakOutputStream& stream) override;
    void __unpack(PakInputStream& stream) override;

    [[nodiscard]] std::string description() const override;

 protected:
    /// The ten fields, each on a line behind its name.
    [[nodiscard]] std::string headerText() const;

 private:
    PakValue iVersion_ = int16_t{2};
    PakValue cPacketType_ = int16_t{0};
    PakValue iMessageType_ = 0;
    PakValue iRequestId_;
    std::string sServantName_;
    std::string sFuncName_;
    PakData sBuffer_;
    PakValue iTimeout_ = 0;
    PakDictionary context_;
    PakDictionary status_;
};
