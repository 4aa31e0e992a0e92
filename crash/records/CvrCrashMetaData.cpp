#include "crash/records/CvrCrashMetaData.h"

#include "crash/CvrLog.h"
#include "crash/archive/RecordArchive.h"

std::string CvrCrashMetaData::encodeData() const {
    return vorla::archivedData(*this);
}

bool CvrCrashMetaData::decode(std::string_view data) {
    auto record = vorla::valueFromData<CvrCrashMetaData>(vorla::asBytes(data));
    if (!record) return false;
    *this = std::move(*record);
    return true;
}

bool CvrCrashMetaData::setEncodeData(std::string_view data) {
    if (data.empty()) {
        CvrLogWarn("<WARN> CVR: data is nil, can not instance %s", "CvrCrashMetaData");
        return false;
    }
    if (!decode(data))
        CvrLogError("<ERROR> CVR: got %s in CvrCrashMetaData setEncodeData for %s",
                    "an unreadable archive", "CvrCrashMetaData");
    return true;
}
