#include "NEX/NEX/VLStatisticManager.h"

#include <pthread.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include <vorla/VLCaptureSetting.h>
#include <vorla/VLStatistics.h>
#include "NEX/NEX/VLNEXUtilities.h"
#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"
#include "platform/base/files.h"
#include "platform/base/raii.h"
#include "settings/CBaseFile.h"
#include "settings/plist.h"

namespace {

using nlohmann::json;

constexpr const char* statFileName = "VorlaSDKStat.plist";

/// Far above what the counters of all events take.
constexpr size_t largestFile = 256 * 1024;

}  // namespace

/// The counters, locked and as far as possible loaded. What is logged meanwhile is held back until
/// they are free again.
class VLStatisticManager::Access {
 public:
    explicit Access(VLStatisticManager& manager) : lock_(manager.mutex_) {
        if (!manager.loaded_) manager.load();
    }

 private:
    const vorla::LogHold hold_;
    const std::lock_guard<std::mutex> lock_;
};

VLStatisticManager& VLStatisticManager::defaultStatisticManager() {
    static vorla::NoDestructor<VLStatisticManager> instance(
        statFolderPath(), vorla::documentsDirectory() + "/" + statFileName);
    static const bool guarded = (guardForks(), true);
    (void)guarded;
    return *instance;
}

VLStatisticManager::VLStatisticManager(std::string folder, std::string oldPath)
    : folder_(std::move(folder)), oldPath_(std::move(oldPath)) {}

// A child that is forked while a thread counts would find the lock taken for ever.
void VLStatisticManager::guardForks() {
    ::pthread_atfork([] { defaultStatisticManager().mutex_.lock(); },
                     [] { defaultStatisticManager().mutex_.unlock(); },
                     [] { defaultStatisticManager().mutex_.unlock(); });
}

void VLStatisticManager::statisticEvent(uint64_t event) {
    const std::string key = std::to_string(event);
    const Access access(*this);
    const auto found = statInfoDic_.find(key);
    const auto count = found == statInfoDic_.end() ? 0 : unsignedIntegerValue(*found);
    if (count) statInfoDic_[key] = *count + 1;
    synchronizeLocked();
}

void VLStatisticManager::statisticEvent(uint64_t event, const std::optional<json>& withValue) {
    const std::string key = std::to_string(event);
    const Access access(*this);
    if (withValue)
        statInfoDic_[key] = *withValue;
    else
        statInfoDic_.erase(key);
    synchronizeLocked();
}

json VLStatisticManager::statInfo() {
    json info;
    {
        const Access access(*this);
        info = statInfoDic_;
    }
    VLCaptureSetting& setting = VLCaptureSetting::sharedInstance();
    const auto put = [&info](VLStatEventNumber key, json value) {
        info[std::to_string(key)] = std::move(value);
    };
    put(VLStatFactRunAlone, setting.isRunAlone());
    put(VLStatFactPlaySound, setting.isPlaySound());
    put(VLStatFactHighResolution, setting.isHighResolution());
    if (const auto machine = VLNEXUtilities::UUID(folder_)) put(VLStatFactMachine, *machine);
    put(VLStatFactVersion, VLNEXUtilities::formattedVersion());
    put(VLStatFactChannel, setting.channel());
    return info;
}

std::optional<uint64_t> VLStatisticManager::unsignedIntegerValue(const json& value) {
    if (value.is_boolean()) return value.get<bool>() ? 1 : 0;
    if (value.is_number_integer()) return value.get<uint64_t>();
    if (!value.is_number_float()) return std::nullopt;
    const double real = value.get<double>();
    if (!(real >= 0.0)) return 0;
    return real < 0x1p64 ? static_cast<uint64_t>(real) : UINT64_MAX;
}

void VLStatisticManager::resetStatistic() {
    const Access access(*this);
    clearLocked();
    updateLocked();
}

void VLStatisticManager::clearStatInfo() {
    const Access access(*this);
    clearLocked();
}

void VLStatisticManager::clearLocked() {
    CBaseFile::RemoveFile(statFilePathLocked());
}

void VLStatisticManager::updateStatInfo() {
    const Access access(*this);
    updateLocked();
}

void VLStatisticManager::updateLocked() {
    statInfoDic_ = json::object();
    loaded_ = false;
    load();
}

bool VLStatisticManager::load() {
    const std::string& path = statFilePathLocked();
    vorla::removeStaleTemporaries(path);
    const auto bytes = vorla::readFile(path, {.largest = largestFile, .followLink = false});
    const int reason = bytes ? 0 : errno;
    auto stored = bytes ? dictionaryFromPlist(*bytes) : std::nullopt;
    if (stored) {
        addStored(std::move(*stored));
    } else if (bytes || reason == EFBIG) {
        VLLogError("%s holds no counters and is put aside", path.c_str());
        std::rename(path.c_str(), (path + ".broken").c_str());
    } else if (reason != ENOENT && reason != ENOTDIR && reason != ELOOP && reason != EINVAL) {
        if (!std::exchange(loggedUnreadable_, true))
            VLLogError("%s cannot be read: %s", path.c_str(), std::strerror(reason));
        return false;
    }
    return loaded_ = true;
}

void VLStatisticManager::addStored(json stored) {
    for (const auto& [key, value] : statInfoDic_.items()) {
        const auto before = stored.find(key);
        const auto earlier = before == stored.end() ? std::nullopt : unsignedIntegerValue(*before);
        const auto since = unsignedIntegerValue(value);
        stored[key] = earlier && since ? json(*earlier + *since) : value;
    }
    statInfoDic_ = std::move(stored);
}

void VLStatisticManager::synchronizeStatInfo() {
    const Access access(*this);
    synchronizeLocked();
}

void VLStatisticManager::synchronizeLocked() {
    // The file holds more than is known here: it is written when it has been read.
    if (!loaded_) return;
    const std::string& path = statFilePathLocked();
    if (writeToPlistFile(statInfoDic_, path, 0600) || errno != ENOENT) return;
    if (CBaseFile::CreateFolder(folder_)) writeToPlistFile(statInfoDic_, path, 0600);
}

std::string VLStatisticManager::statFilePath() {
    const Access access(*this);
    return statFilePathLocked();
}

const std::string& VLStatisticManager::statFilePathLocked() {
    if (!statFilePath_.empty()) return statFilePath_;
    if (!CBaseFile::FileExist(folder_)) CBaseFile::CreateFolder(folder_);
    const std::string path = folder_ + "/" + statFileName;
    moveOldFile(path);
    statFilePath_ = path;
    return statFilePath_;
}

void VLStatisticManager::moveOldFile(const std::string& newPath) const {
    if (CBaseFile::FileExist(oldPath_) && CBaseFile::CopyFile(oldPath_, newPath))
        CBaseFile::RemoveFile(oldPath_);
}

// "Documemts" is how the folder is called on users' disks.
std::string VLStatisticManager::statFolderPath() {
    return vorla::dataHome() + "/Containers/" + vorla::HostIdentity::fileName() + "/Data/Documemts";
}
