// The user records: in memory first, in their file when it is written.
#include <algorithm>

#include "crash/CvrLog.h"
#include "crash/store/CvrFilePersistHandler.h"

namespace {

using Archives = std::vector<std::vector<uint8_t>>;

constexpr size_t largestFile = size_t{1024} * 1024;
/// A day leaves few. More than these are not kept, the oldest go.
constexpr size_t mostRecords = 1000;

bool contains(const std::vector<CvrSummaryInfo>& infos, const CvrSummaryInfo& info) {
    return std::ranges::any_of(infos, [&](const CvrSummaryInfo& one) {
        return one.startTime == info.startTime && one.startType == info.startType &&
               one.userid == info.userid && one.proc == info.proc &&
               one.sessionId == info.sessionId;
    });
}

void keepLast(std::vector<CvrSummaryInfo>& infos) {
    if (infos.size() > mostRecords)
        infos.erase(infos.begin(), infos.end() - static_cast<ptrdiff_t>(mostRecords));
}

std::string archived(const std::vector<CvrSummaryInfo>& infos) {
    Archives archives;
    for (const CvrSummaryInfo& info : infos) {
        const std::string data = vorla::archivedData(info);
        archives.emplace_back(data.begin(), data.end());
    }
    return vorla::archivedData(archives);
}

}  // namespace

std::vector<CvrSummaryInfo> CvrFilePersistHandler::readUserInfos(
    const vorla::StoreFolder& folder) const {
    std::vector<CvrSummaryInfo> infos;
    const auto bytes = folder.read(userInfoName, largestFile);
    const auto archives =
        bytes ? vorla::valueFromData<Archives>(vorla::asBytes(*bytes)) : std::nullopt;
    if (!archives) return infos;
    for (const auto& archive : *archives)
        if (auto info = vorla::valueFromData<CvrSummaryInfo>(archive))
            infos.push_back(std::move(*info));
    keepLast(infos);
    return infos;
}

bool CvrFilePersistHandler::saveOneData(const CvrSummaryInfo& info) {
    {
        const std::lock_guard guard(mutex_);
        allUserInfos_.push_back(info);
        keepLast(allUserInfos_);
        userinfoChanged_ = true;
    }
    changed();
    return true;
}

bool CvrFilePersistHandler::deleteDatas(const std::vector<CvrSummaryInfo>& infos) {
    {
        const std::lock_guard guard(mutex_);
        std::erase_if(allUserInfos_,
                      [&](const CvrSummaryInfo& one) { return contains(infos, one); });
        deletedUserInfos_.insert(deletedUserInfos_.end(), infos.begin(), infos.end());
        userinfoChanged_ = true;
    }
    persistAllUserInfoDatas();
    return true;
}

std::vector<CvrSummaryInfo> CvrFilePersistHandler::getAllDatas() const {
    const std::lock_guard guard(mutex_);
    return allUserInfos_;
}

size_t CvrFilePersistHandler::getCurrSize() const {
    const std::lock_guard guard(mutex_);
    return allUserInfos_.size();
}

void CvrFilePersistHandler::persistAllUserInfoDatas() {
    {
        const std::lock_guard guard(mutex_);
        if (!userinfoChanged_) return;
        const auto folder = openFolder();
        if (!folder) return;
        const auto lock = folder->lock(std::chrono::milliseconds(200));
        // What another process of this host has added meanwhile stays.
        std::vector<CvrSummaryInfo> stored = readUserInfos(*folder);
        std::erase_if(stored, [&](const CvrSummaryInfo& one) {
            return contains(deletedUserInfos_, one) || contains(allUserInfos_, one);
        });
        stored.insert(stored.end(), allUserInfos_.begin(), allUserInfos_.end());
        keepLast(stored);
        if (!folder->write(userInfoName, archived(stored))) return;
        CvrLogInfo("<INFO> CVR: Persist userinfo data with count %d",
                   static_cast<int>(stored.size()));
        userinfoChanged_ = false;
        deletedUserInfos_.clear();
    }
    changed();
}

CvrFilePersistHandler::Prepared CvrFilePersistHandler::prepared() const {
    const std::lock_guard guard(mutex_);
    return {folder_, userinfoChanged_ ? archived(allUserInfos_) : std::string()};
}
