#include "crash/records/CvrWire.h"

namespace cvr {
namespace {

/// Writes the fields under the tags 0, 1, 2 and so on.
template <typename... Fields>
void writeFields(PakOutputStream& stream, const Fields&... fields) {
    uint8_t tag = 0;
    (stream.write(fields, tag++), ...);
}

}  // namespace

void RequestPkg::writeTo(PakOutputStream& stream) const {
    writeFields(stream, platformId, productId, bundleId, productVersion, channel, sdkVersion, cmd,
                sBuffer, model, hardwareOs, reserved, sessionId);
}

void ResponsePkg::readFrom(PakInputStream& stream) {
    stream.read(result, 0, true);
    stream.read(cmd, 1, true);
    stream.read(sBuffer, 2, false);
    stream.read(gateWayIp, 3, false);
    stream.read(serverTime, 4, false);
}

void CvrSecurity::readFrom(PakInputStream& stream) {
    stream.read(encKey, 0, true);
    stream.read(encPubKey, 1, true);
}

void CvrStrategy::readFrom(PakInputStream& stream) {
    stream.read(enable, 0, true);
    stream.read(userInfoEnable, 1, true);
    stream.read(queryEnable, 2, true);
    stream.read(url, 3, false);
    stream.read(expUrl, 4, false);
    stream.read(security, 5, false);
    stream.read(valueMap, 6, false);
}

void SummaryInfo::writeTo(PakOutputStream& stream) const {
    writeFields(stream, startTime, startType, userid, proc, sessionId);
}

void UserInfoPackage::writeTo(PakOutputStream& stream) const {
    writeFields(stream, type, proceName, deviceId, summaryInfos, valueMap);
}

void AppInfo::writeTo(PakOutputStream& stream) const {
    writeFields(stream, processName, cpuArchVersion, processUUID, processBaseAddr, version, extras);
}

void AppSession::writeTo(PakOutputStream& stream) const {
    writeFields(stream, sessionId, events);
}

void Attachment::writeTo(PakOutputStream& stream) const {
    writeFields(stream, type, fileName, data);
}

void ExceptionUpload::writeTo(PakOutputStream& stream) const {
    writeFields(stream, crashType, crashTime, exceptionType, causedBy, address, thread, callStack,
                allStacks, expUid, sessionInfo, dcount, userId, deviceId, appInfo, appInfoList,
                reserved, attachmentList, valueMap, userMap);
}

}  // namespace cvr
