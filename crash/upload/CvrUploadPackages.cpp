#include "crash/upload/CvrUploadPackages.h"

#include "crash/CvrLog.h"

namespace {

template <typename Record>
void fill(std::vector<uint8_t>& buffer, const Record& record) {
    analyticspak::PakOutputStream stream;
    record.writeTo(stream);
    buffer.assign(stream.bytes().begin(), stream.bytes().end());
}

}  // namespace

bool CvrUserInfoPackage::setDataToBuffer(std::vector<uint8_t>* buffer) const {
    if (!buffer) {
        CvrLogError("<ERROR> CVR: CvrUserInfoPackage setDataToBuffer meet nil jout");
        return false;
    }
    cvr::UserInfoPackage record;
    record.type = type;
    record.proceName = proceName;
    record.deviceId = deviceId;
    for (const CvrSummaryInfo& info : summaryInfos)
        info.createNEXModel(record.summaryInfos.emplace_back());
    record.valueMap = valueMap;
    fill(*buffer, record);
    return true;
}

bool CvrExceptionUploadPackage::setDataToBuffer(std::vector<uint8_t>* buffer) const {
    if (!buffer) {
        CvrLogError("<ERROR> CVR: CvrExceptionUploadPackage setDataToBuffer meet nil jout");
        return false;
    }
    cvr::ExceptionUploadList record;
    for (const CvrExpObj& crash : list) crash.createNEXModel(record.list.emplace_back());
    fill(*buffer, record);
    return true;
}
