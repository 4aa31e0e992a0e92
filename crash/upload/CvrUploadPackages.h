#pragma once

#include <map>
#include <string>
#include <vector>

#include "crash/records/CvrExpObj.h"
#include "crash/records/CvrSummaryInfo.h"
#include "crash/records/CvrTransferProtocols.h"

/// The body of a request with user records.
class CvrUserInfoPackage final : public CvrObjTransToPakBufferProtocol {
 public:
    /// 1 for the process's first package, 2 for the others.
    int8_t type = 1;
    std::string proceName;
    std::string deviceId;
    std::vector<CvrSummaryInfo> summaryInfos;
    std::map<std::string, std::string> valueMap;

    bool setDataToBuffer(std::vector<uint8_t>* buffer) const override;
};

/// The body of a request with crashes.
class CvrExceptionUploadPackage final : public CvrObjTransToPakBufferProtocol {
 public:
    std::vector<CvrExpObj> list;

    bool setDataToBuffer(std::vector<uint8_t>* buffer) const override;
};
