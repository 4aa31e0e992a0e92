#include "crash/records/CvrExpObj.h"

namespace {

template <typename Local, typename Wire>
void copyEach(const std::vector<Local>& from, std::vector<Wire>& to) {
    to.reserve(from.size());
    for (const Local& one : from) one.createNEXModel(to.emplace_back());
}

}  // namespace

void CvrExpObj::createNEXModel(cvr::ExceptionUpload& record) const {
    record.crashType = crashType;
    record.crashTime = cashTime;
    record.exceptionType = exceptionType;
    record.causedBy = causedBy;
    record.address = excepitonAddress;
    record.thread = threadName;
    record.callStack = callStack;
    record.allStacks = allStacks;
    record.expUid = expUid;
    if (sessionInfo) sessionInfo->createNEXModel(record.sessionInfo);
    record.dcount = dcount;
    record.userId = userId;
    record.deviceId = deviceId;
    if (appInfo) appInfo->createNEXModel(record.appInfo);
    copyEach(appInfoList, record.appInfoList);
    copyEach(attachmentList, record.attachmentList);
    record.valueMap = valueMap;
    record.userMap = userMap;
}
