#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "NEX/NEX+PAK/SerializationPAK/compact/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/PakOutputStream.h"

/// The records that the crash reporter sends and receives. The order in their `writeTo` and the
/// numbers in their `readFrom` are tags of the wire: never renumber. Records that are written have
/// all their fields written, empty ones too.
namespace cvr {

using analyticspak::PakInputStream;
using analyticspak::PakOutputStream;
using StringMap = std::map<std::string, std::string>;

/// A request, under the attribute "detail" of its packet.
struct RequestPkg {
    static constexpr const char* structName = "cvr.RequestPkg";

    int32_t platformId = 0;
    std::string productId;
    std::string bundleId;
    std::string productVersion;
    std::string channel;
    std::string sdkVersion;
    int32_t cmd = 0;
    /// The body, compressed and then encrypted; empty for none.
    std::vector<uint8_t> sBuffer;
    std::string model;
    std::string hardwareOs;
    StringMap reserved;
    std::string sessionId;

    void writeTo(PakOutputStream& stream) const;
};

/// A reply, under the same attribute.
struct ResponsePkg {
    static constexpr const char* structName = "cvr.ResponsePkg";

    /// 0 is success.
    int8_t result = 0;
    int32_t cmd = 0;
    std::vector<uint8_t> sBuffer;
    std::string gateWayIp;
    /// In ms since 1970; 0 for none.
    int64_t serverTime = 0;

    /// Raises PakDecodeException.
    void readFrom(PakInputStream& stream);
};

struct CvrSecurity {
    std::string encKey;
    std::string encPubKey;

    void readFrom(PakInputStream& stream);
};

/// The body of a reply to a strategy query.
struct CvrStrategy {
    int8_t enable = 1;
    int8_t userInfoEnable = 1;
    int8_t queryEnable = 1;
    std::string url;
    std::string expUrl;
    CvrSecurity security;
    StringMap valueMap;

    void readFrom(PakInputStream& stream);
};

struct SummaryInfo {
    int64_t startTime = 0;
    int8_t startType = 0;
    std::string userid;
    std::string proc;
    std::string sessionId;

    void writeTo(PakOutputStream& stream) const;
};

/// The body of a request with user records.
struct UserInfoPackage {
    /// 1 for the first of a process, 2 for later ones.
    int8_t type = 0;
    std::string proceName;
    std::string deviceId;
    std::vector<SummaryInfo> summaryInfos;
    StringMap valueMap;

    void writeTo(PakOutputStream& stream) const;
};

struct AppInfo {
    std::string processName;
    std::string cpuArchVersion;
    std::string processUUID;
    std::string processBaseAddr;
    std::string version;
    /// "A39": the end address. "A40": the path.
    StringMap extras;

    void writeTo(PakOutputStream& stream) const;
};

struct AppSession {
    std::string sessionId;
    std::vector<std::string> events;

    void writeTo(PakOutputStream& stream) const;
};

struct Attachment {
    int8_t type = 0;
    std::string fileName;
    std::vector<uint8_t> data;

    void writeTo(PakOutputStream& stream) const;
};

struct ExceptionUpload {
    std::string crashType;
    int64_t crashTime = 0;
    std::string exceptionType;
    std::string causedBy;
    std::string address;
    std::string thread;
    std::string callStack;
    StringMap allStacks;
    std::string expUid;
    AppSession sessionInfo;
    int32_t dcount = 0;
    std::string userId;
    std::string deviceId;
    AppInfo appInfo;
    std::vector<AppInfo> appInfoList;
    std::vector<AppInfo> reserved;
    std::vector<Attachment> attachmentList;
    StringMap valueMap;
    StringMap userMap;

    void writeTo(PakOutputStream& stream) const;
};

/// The body of a request with crashes.
struct ExceptionUploadList {
    std::vector<ExceptionUpload> list;

    void writeTo(PakOutputStream& stream) const { stream.write(list, 0); }
};

}  // namespace cvr
