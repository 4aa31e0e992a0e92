#pragma once

#include <map>
#include <memory>
#include <string>

#include "crash/facts/CvrModelBase.h"
#include "crash/records/CvrTransferProtocols.h"
#include "crash/records/CvrWire.h"

/// What a request asks for. Sent: never renumber.
enum CvrCommand : int32_t {
    CvrCommandQueryStrategy = 510,
    CvrCommandUserInfo = 520,
    CvrCommandExceptions = 530,
    CvrCommandQueryWithUserInfo = 540,
};

/// A request as the crash reporter's parts make it.
class CvrRequestPackage {
 public:
    CvrRequestPackage() = default;
    /// The facts about the program, the command, and the body, which may be null.
    CvrRequestPackage(const CvrModelBase::Facts& data, int32_t cmd,
                      std::shared_ptr<const CvrObjTransToPakBufferProtocol> sBuffer);
    static CvrRequestPackage createPackageForBlockData(
        const CvrModelBase::Facts& data,
        std::shared_ptr<const CvrObjTransToPakBufferProtocol> body);

    int8_t platformId = 4;
    std::string productId;
    std::string bundleId;
    std::string productVersion;
    std::string channel;
    std::string sdkVersion;
    int32_t cmd = 0;
    std::shared_ptr<const CvrObjTransToPakBufferProtocol> sBuffer;
    std::string hardwareOs;
    std::string model;
    std::map<std::string, std::string> reserved;
    std::string sessionId;

    /// The wire record, its body neither compressed nor encrypted.
    void createNEXModel(cvr::RequestPkg& record) const;
};
