#include "crash/records/CvrAppInfo.h"

void CvrAppInfo::createNEXModel(cvr::AppInfo& record) const {
    record.processName = processName;
    record.cpuArchVersion = cpuArchVersion;
    record.processUUID = processUUID;
    record.processBaseAddr = processBaseAddr;
    record.version = version;
    if (!endAddress.empty()) record.extras["A39"] = endAddress;
    if (!path.empty()) record.extras["A40"] = path;
}
