#include "crash/store/CvrFilePersistHandler.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "crash/CvrLog.h"
#include "crash/facts/CvrDeviceUtil.h"
#include "platform/base/VLLog.h"
#include "platform/base/raii.h"

namespace {

using vorla::StoreFolder;
namespace crash_index = vorla::crash_index;

constexpr size_t largestStrategy = size_t{64} * 1024;

}  // namespace

CvrFilePersistHandler& CvrFilePersistHandler::sharedInstance() {
    static vorla::NoDestructor<CvrFilePersistHandler> instance(CvrModelBase::defaultFolder(),
                                                               CvrModelBase::getDefualtAnaModel());
    return *instance;
}

CvrFilePersistHandler::CvrFilePersistHandler(std::string folder, CvrModelBase& model)
    : model_(model), folder_(std::move(folder)) {
    noteForHandlerLocked();
}

// Not under the main lock alone: whoever counts crashes does not wait for it.
std::optional<StoreFolder> CvrFilePersistHandler::openFolder() const {
    std::unique_lock lock(preparedMutex_);
    const std::string folder = folder_;
    const auto origin = origin_;
    lock.unlock();
    return StoreFolder::open(folder, origin);
}

bool CvrFilePersistHandler::changeDbPath(const std::string& path) {
    if (path.empty()) return false;
    const bool there = ::access(path.c_str(), F_OK) == 0;
    if (!StoreFolder::open(path, StoreFolder::Origin::Given)) {
        CvrLogError("<ERROR> CVR: error reset db path");
        return false;
    }
    if (!there) CvrLogInfo("<INFO> CVR: create dir %s", path.c_str());
    {
        const std::lock_guard lock(mutex_);
        std::unique_lock folder(preparedMutex_);
        folder_ = path;
        origin_ = StoreFolder::Origin::Given;
        folder.unlock();
        noteForHandlerLocked();
    }
    CvrLogInfo("<INFO> CVR: **reset default crash data path %s ", path.c_str());
    changed();
    return true;
}

bool CvrFilePersistHandler::changeIndex(
    const std::function<bool(const vorla::StoreFolder&)>& action) {
    const vorla::LogHold hold;
    const std::lock_guard guard(mutex_);
    const auto folder = openFolder();
    if (!folder) return false;
    const auto lock = folder->lock(longestWait);
    allCrashMetas_ = crash_index::read(*folder);
    return !action(*folder) || crash_index::write(*folder, allCrashMetas_);
}

void CvrFilePersistHandler::loadAllDatas() {
    const vorla::LogHold hold;
    {
        const std::lock_guard guard(mutex_);
        if (dataLoaded_) return;
        dataLoaded_ = true;
        changeIndex([&](const StoreFolder& folder) {
            folder.removeLeftovers();
            if (model_.isVersionChanged()) {
                removeOldVersion(folder);
                return false;
            }
            mergeUserInfosLocked(folder);
            CvrLogInfo("<INFO> CVR: **CVR File Persist**LOADED %d userinfos",
                       static_cast<int>(allUserInfos_.size()));
            const size_t before = allCrashMetas_.size();
            crash_index::enforceBounds(folder, allCrashMetas_);
            CvrLogInfo("<INFO> CVR: **CVR File Persist**LOADED %d crashes",
                       static_cast<int>(allCrashMetas_.size()));
            return allCrashMetas_.size() != before;
        });
    }
    changed();
}

void CvrFilePersistHandler::removeOldVersion(const StoreFolder& folder) {
    CvrLogInfo("<INFO> CVR: clean old version userinfo and crashes");
    if (!folder.remove(userInfoName) && errno != ENOENT)
        CvrLogError("<ERROR> CVR: clean old version userinfo file failed %s", std::strerror(errno));
    removeCrashFiles(folder);
    allCrashMetas_.clear();
}

void CvrFilePersistHandler::removeCrashFiles(const StoreFolder& folder) {
    for (const vorla::StoreFile& file : folder.list()) {
        if (!file.name.starts_with(crash_index::filePrefix)) continue;
        CvrLogInfo("<INFO> CVR: delete crash file %s", file.name.c_str());
        folder.remove(file.name);
    }
}

void CvrFilePersistHandler::deleteAllCrashes() {
    const vorla::LogHold hold;
    const std::lock_guard guard(mutex_);
    const auto folder = openFolder();
    if (!folder) return;
    const auto lock = folder->lock(longestWait);
    removeCrashFiles(*folder);
}

void CvrFilePersistHandler::deleteAllInvalidCrashes() {
    changeIndex([&](const StoreFolder& folder) {
        std::vector<std::string> named;
        for (const auto& [key, meta] : allCrashMetas_) named.push_back(meta.file);
        for (const vorla::StoreFile& file : folder.list()) {
            if (!file.name.starts_with(crash_index::filePrefix) ||
                file.name == crash_index::indexName || std::ranges::count(named, file.name) > 0)
                continue;
            CvrLogInfo("<INFO> CVR: delete invalid crash file %s", file.name.c_str());
            if (!folder.remove(file.name))
                CvrLogError("<ERROR> CVR: clean crash file %s failed %s", file.name.c_str(),
                            std::strerror(errno));
        }
        return false;
    });
}

void CvrFilePersistHandler::loadStrategys() {
    const std::lock_guard guard(mutex_);
    if (strategyLoaded_) return;
    strategyLoaded_ = true;
    const auto folder = openFolder();
    const auto bytes = folder ? folder->read(strategyName, largestStrategy) : std::nullopt;
    auto strategy = std::make_shared<CvrLocalStrategy>();
    if (bytes && strategy->decode(*bytes)) commonStrategyData_ = std::move(strategy);
}

std::shared_ptr<const CvrLocalStrategy> CvrFilePersistHandler::loadCommonStrategyFile() {
    const std::lock_guard guard(mutex_);
    loadStrategys();
    return commonStrategyData_;
}

bool CvrFilePersistHandler::saveCommonStrategy(const CvrLocalStrategy& strategy) {
    const vorla::LogHold hold;
    const std::lock_guard guard(mutex_);
    auto kept = std::make_shared<CvrLocalStrategy>(strategy);
    const std::string data = kept->encodeData();
    commonStrategyData_ = std::move(kept);
    strategyLoaded_ = true;
    const auto folder = openFolder();
    if (data.size() > largestStrategy)
        CvrLogWarn("<WARN> CVR: fail to encode common strategy");
    else if (!folder || !folder->write(strategyName, data))
        CvrLogWarn("<WARN> CVR: fail to save common strategy");
    else
        CvrLogInfo("<INFO> CVR: saved common strategy ");
    return false;
}

vorla::StoreLock CvrFilePersistHandler::claim(const std::string& name) {
    const std::lock_guard guard(mutex_);
    const auto folder = openFolder();
    return folder ? folder->claim(name) : vorla::StoreLock();
}
