#include "crash/records/CvrWire.h"

namespace cvr {

void RequestPkg::writeTo(PakOutputStream& stream) const {
    stream.write(platformId, 0);
    stream.write(productId, 1);
    stream.write(bundleId, 2);
    stream.write(productVersion, 3);
    stream.write(channel, 4);
    stream.write(sdkVersion, 5);
    stream.write(cmd, 6);
    stream.write(sBuffer, 7);
    stream.write(model, 8);
    stream.write(hardwareOs, 9);
    stream.write(reserved, 10);
    stream.write(sessionId, 11);
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
    stream.write(startTime, 0);
    stream.write(startType, 1);
    stream.write(userid, 2);
    stream.write(proc, 3);
    stream.write(sessionId, 4);
}

void UserInfoPackage::writeTo(PakOutputStream& stream) const {
    stream.write(type, 0);
    stream.write(proceName, 1);
    stream.write(deviceId, 2);
    stream.write(summaryInfos, 3);
    stream.write(valueMap, 4);
}

void AppInfo::writeTo(PakOutputStream& stream) const {
    stream.write(processName, 0);
    stream.write(cpuArchVersion, 1);
    stream.write(processUUID, 2);
    stream.write(processBaseAddr, 3);
    stream.write(version, 4);
    stream.write(extras, 5);
}

void AppSession::writeTo(PakOutputStream& stream) const {
    stream.write(sessionId, 0);
    stream.write(events, 1);
}

void Attachment::writeTo(PakOutputStream& stream) const {
    stream.write(type, 0);
    stream.write(fileName, 1);
    stream.write(data, 2);
}

void ExceptionUpload::writeTo(PakOutputStream& stream) const {
    stream.write(crashType, 0);
    stream.write(crashTime, 1);
    stream.write(exceptionType, 2);
    stream.write(causedBy, 3);
    stream.write(address, 4);
    stream.write(thread, 5);
    stream.write(callStack, 6);
    stream.write(allStacks, 7);
    stream.write(expUid, 8);
    stream.write(sessionInfo, 9);
    stream.write(dcount, 10);
    stream.write(userId, 11);
    stream.write(deviceId, 12);
    stream.write(appInfo, 13);
    stream.write(appInfoList, 14);
    stream.write(reserved, 15);
    stream.write(attachmentList, 16);
    stream.write(valueMap, 17);
    stream.write(userMap, 18);
}

}  // namespace cvr
