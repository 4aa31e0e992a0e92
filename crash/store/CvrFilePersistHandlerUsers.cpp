// The user records: in memory first, in their file when it is written.
#include <algorithm>

#include "crash/CvrLog.h"
#include "crash/store/CvrFilePersistHandler.h"
#include "platform/base/VLLog.h"

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

std::vector<CvrSummaryInfo> CvrFilePersistHandler::readUserInfos(const vorla::StoreFolder& folder) {
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
        unsavedUserInfos_.push_back(info);
        keepLast(allUserInfos_);
        keepLast(unsavedUserInfos_);
        userinfoChanged_ = true;
        noteForHandlerLocked();
    }
    changed();
    return true;
}

bool CvrFilePersistHandler::deleteDatas(const std::vector<CvrSummaryInfo>& infos) {
    {
        const std::lock_guard guard(mutex_);
        const auto isDeleted = [&](const CvrSummaryInfo& one) { return contains(infos, one); };
        std::erase_if(allUserInfos_, isDeleted);
        std::erase_if(unsavedUserInfos_, isDeleted);
        deletedUserInfos_.insert(deletedUserInfos_.end(), infos.begin(), infos.end());
        keepLast(deletedUserInfos_);
        userinfoChanged_ = true;
        noteForHandlerLocked();
    }
    persistAllUserInfoDatas();
    changed();
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

// What is on disk counts: another process of this host may have added records, or have sent and
// deleted some. Only our own news come on top.
void CvrFilePersistHandler::mergeUserInfosLocked(const vorla::StoreFolder& folder) {
    std::vector<CvrSummaryInfo> merged = readUserInfos(folder);
    std::erase_if(merged, [&](const CvrSummaryInfo& one) {
        return contains(deletedUserInfos_, one) || contains(unsavedUserInfos_, one);
    });
    merged.insert(merged.end(), unsavedUserInfos_.begin(), unsavedUserInfos_.end());
    keepLast(merged);
    allUserInfos_ = std::move(merged);
    noteForHandlerLocked();
}

void CvrFilePersistHandler::refreshUserInfoDatas() {
    loadAllDatas();
    const std::lock_guard guard(mutex_);
    const auto folder = openFolder();
    if (folder) mergeUserInfosLocked(*folder);
}

void CvrFilePersistHandler::persistAllUserInfoDatas() {
    loadAllDatas();
    const vorla::LogHold hold;
    {
        const std::lock_guard guard(mutex_);
        if (!userinfoChanged_) return;
        const auto folder = openFolder();
        if (!folder) return;
        const auto lock = folder->lock(longestWait);
        mergeUserInfosLocked(*folder);
        if (!folder->write(userInfoName, archived(allUserInfos_))) return;
        CvrLogInfo("<INFO> CVR: Persist userinfo data with count %d",
                   static_cast<int>(allUserInfos_.size()));
        userinfoChanged_ = false;
        unsavedUserInfos_.clear();
        deletedUserInfos_.clear();
        noteForHandlerLocked();
    }
    changed();
}

void CvrFilePersistHandler::noteForHandlerLocked() {
    Prepared next{folder_, userinfoChanged_ ? archived(allUserInfos_) : std::string()};
    const std::lock_guard guard(preparedMutex_);
    prepared_ = std::move(next);
}

CvrFilePersistHandler::Prepared CvrFilePersistHandler::prepared() const {
    const std::lock_guard guard(preparedMutex_);
    return prepared_;
}
