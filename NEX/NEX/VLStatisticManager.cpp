#include "NEX/NEX/VLStatisticManager.h"

#include <pthread.h>

#include <cstdio>
#include <utility>

#include <vorla/VLCaptureSetting.h>
#include "NEX/NEX/VLNEXUtilities.h"
#include "platform/base/Bundle.h"
#include "platform/base/files.h"
#include "platform/base/raii.h"
#include "settings/CBaseFile.h"
#include "settings/plist.h"

namespace {

using nlohmann::json;

constexpr const char* statFileName = "VorlaSDKStat.plist";

/// Entries that are made for each upload.
enum EnvironmentKey : uint64_t {
    EnvironmentKeyRunAlone = 1018,
    EnvironmentKeyPlaySound = 1019,
    EnvironmentKeyHighResolution = 1020,
    EnvironmentKeyMachine = 1021,
    EnvironmentKeyVersion = 1022,
    EnvironmentKeyChannel = 1023,
};

}  // namespace

VLStatisticManager& VLStatisticManager::defaultStatisticManager() {
    static vorla::NoDestructor<VLStatisticManager> instance(
        statFolderPath(), vorla::documentsDirectory() + "/" + statFileName);
    static const bool guarded = (guardForks(), true);
    (void)guarded;
    return *instance;
}

VLStatisticManager::VLStatisticManager(std::string folder, std::string oldPath)
    : folder_(std::move(folder)), oldPath_(std::move(oldPath)) {
    updateStatInfo();
}

// A child that is forked while a thread counts would find the lock taken for ever.
void VLStatisticManager::guardForks() {
    ::pthread_atfork([] { defaultStatisticManager().mutex_.lock(); },
                     [] { defaultStatisticManager().mutex_.unlock(); },
                     [] { defaultStatisticManager().mutex_.unlock(); });
}

void VLStatisticManager::statisticEvent(uint64_t event) {
    const std::string key = std::to_string(event);
    const std::lock_guard lock(mutex_);
    const auto found = statInfoDic_.find(key);
    const auto count = found == statInfoDic_.end() ? 0 : unsignedIntegerValue(*found);
    if (count) statInfoDic_[key] = *count + 1;
    synchronizeLocked();
}

void VLStatisticManager::statisticEvent(uint64_t event, const std::optional<json>& withValue) {
    const std::string key = std::to_string(event);
    const std::lock_guard lock(mutex_);
    if (withValue)
        statInfoDic_[key] = *withValue;
    else
        statInfoDic_.erase(key);
    synchronizeLocked();
}

json VLStatisticManager::statInfo() {
    json info;
    {
        const std::lock_guard lock(mutex_);
        info = statInfoDic_;
    }
    VLCaptureSetting& setting = VLCaptureSetting::sharedInstance();
    const auto put = [&info](EnvironmentKey key, json value) {
        info[std::to_string(key)] = std::move(value);
    };
    put(EnvironmentKeyRunAlone, setting.isRunAlone());
    put(EnvironmentKeyPlaySound, setting.isPlaySound());
    put(EnvironmentKeyHighResolution, setting.isHighResolution());
    if (const auto machine = VLNEXUtilities::UUID(folder_)) put(EnvironmentKeyMachine, *machine);
    put(EnvironmentKeyVersion, VLNEXUtilities::formattedVersion());
    put(EnvironmentKeyChannel, setting.channel());
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
    const std::lock_guard lock(mutex_);
    clearLocked();
    updateLocked();
}

void VLStatisticManager::clearStatInfo() {
    const std::lock_guard lock(mutex_);
    clearLocked();
}

void VLStatisticManager::clearLocked() {
    CBaseFile::RemoveFile(statFilePathLocked());
}

void VLStatisticManager::updateStatInfo() {
    const std::lock_guard lock(mutex_);
    updateLocked();
}

void VLStatisticManager::updateLocked() {
    const std::string& path = statFilePathLocked();
    auto stored = readFromPlistFile(path);
    if (!stored && CBaseFile::FileExist(path))
        std::rename(path.c_str(), (path + ".broken").c_str());
    statInfoDic_ = stored ? std::move(*stored) : json::object();
}

void VLStatisticManager::synchronizeStatInfo() {
    const std::lock_guard lock(mutex_);
    synchronizeLocked();
}

void VLStatisticManager::synchronizeLocked() {
    writeToPlistFile(statInfoDic_, statFilePathLocked(), 0600);
}

std::string VLStatisticManager::statFilePath() {
    const std::lock_guard lock(mutex_);
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
