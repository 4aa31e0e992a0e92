#include "crash/facts/CvrModelBase.h"

#include <cerrno>
#include <utility>

#include "crash/CvrLog.h"
#include "crash/archive/RecordArchive.h"
#include "crash/facts/CvrBundleUtil.h"
#include "crash/facts/CvrDeviceUtil.h"
#include "platform/base/Bundle.h"
#include "platform/base/files.h"
#include "platform/base/raii.h"

namespace {

using vorla::StoreFolder;

constexpr size_t largestFile = size_t{1024} * 1024;
/// As long as the thread that sets a value may be held up by another process.
constexpr std::chrono::milliseconds longestWait(200);
/// From 1970 to the date that session identifiers count from, 2001.
constexpr int64_t referenceDate = 978307200;

constexpr const char* keyVersion = "ana_ver_hash";
constexpr const char* keyLastCrashReported = "last_crash_reported";
constexpr const char* keyLastCrashTime = "last_crash_time";

CvrModelBase::Facts initialFacts(int64_t now) {
    CvrModelBase::Facts facts;
    const std::string version = CvrBundleUtil::getBundleShortVer();
    const std::string build = CvrBundleUtil::getBundleVersion();
    facts.appVersion = version.empty() ? build : version + "(" + build + ")";
    facts.bundleId = CvrBundleUtil::getBundleId();
    facts.hardwareModel = CvrDeviceUtil::model();
    facts.osVer = "Mac OS X " + CvrDeviceUtil::getOSVersion();
    facts.osVerFloat = CvrDeviceUtil::getOSVerFloat();
    facts.sessionId = std::to_string(now / 1000 - referenceDate);
    facts.pIdentity = CvrBundleUtil::getSBKCIBuildUUID();
    return facts;
}

}  // namespace

CvrModelBase& CvrModelBase::getDefualtAnaModel() {
    static vorla::NoDestructor<CvrModelBase> instance(defaultFolder(), &CvrDeviceUtil::now);
    return *instance;
}

CvrModelBase::CvrModelBase(std::string folder, CvrClock now)
    : now_(std::move(now)), facts_(initialFacts(now_())), folder_(std::move(folder)) {}

std::string CvrModelBase::defaultFolder() {
    return vorla::dataHome() + "/.cvr/" + vorla::HostIdentity::fileName();
}

CvrModelBase::Facts CvrModelBase::facts() const {
    const std::lock_guard lock(mutex_);
    return facts_;
}

void CvrModelBase::change(const std::function<void(Facts&)>& change) {
    {
        const std::lock_guard lock(mutex_);
        change(facts_);
    }
    if (onChange) onChange();
}

std::optional<StoreFolder> CvrModelBase::openFolder() const {
    return StoreFolder::open(folder_, origin_);
}

void CvrModelBase::resetBundlePath(const std::string& path) {
    if (path.empty()) return;
    const bool there = ::access(path.c_str(), F_OK) == 0;
    if (!StoreFolder::open(path, StoreFolder::Origin::Given)) {
        CvrLogError("<ERROR> CVR: error reset bundle path");
        return;
    }
    if (!there) CvrLogInfo("<INFO> CVR: create dir %s", path.c_str());
    {
        const std::lock_guard lock(mutex_);
        folder_ = path;
        origin_ = StoreFolder::Origin::Given;
    }
    CvrLogInfo("<INFO> CVR: reset sdk data path %s", path.c_str());
    if (onChange) onChange();
}

std::string CvrModelBase::bundleFilePath() const {
    const std::lock_guard lock(mutex_);
    return folder_ + "/" + bundleFileName;
}

CvrModelBase::Dictionary CvrModelBase::readDictionary(const StoreFolder& folder) {
    const auto bytes = folder.read(bundleFileName, largestFile);
    if (!bytes) return {};
    return vorla::valueFromData<Dictionary>(vorla::asBytes(*bytes)).value_or(Dictionary());
}

void CvrModelBase::initBundleFile() {
    const std::lock_guard lock(mutex_);
    loadLocked();
}

void CvrModelBase::loadLocked() {
    if (std::exchange(loaded_, true)) return;
    const auto folder = openFolder();
    if (folder) dictionary_ = readDictionary(*folder);
}

void CvrModelBase::writeLocked() {
    const auto folder = openFolder();
    if (!folder) return;
    const auto lock = folder->lock(longestWait);
    Dictionary stored = readDictionary(*folder);
    for (const std::string& key : changedKeys_) {
        const auto found = dictionary_.find(key);
        if (found == dictionary_.end())
            stored.erase(key);
        else
            stored.insert_or_assign(key, found->second);
    }
    if (!folder->write(bundleFileName, vorla::archivedData(stored))) return;
    dictionary_ = std::move(stored);
    changedKeys_.clear();
}

template <typename Action>
void CvrModelBase::changeKeys(Action action) {
    {
        const std::lock_guard lock(mutex_);
        loadLocked();
        action();
    }
    if (onChange) onChange();
}

void CvrModelBase::persistKey(const std::string& key, Value value) {
    changeKeys([&] {
        dictionary_.insert_or_assign(key, std::move(value));
        changedKeys_.insert(key);
        writeLocked();
    });
}

void CvrModelBase::setKey(const std::string& key, Value value) {
    changeKeys([&] {
        dictionary_.insert_or_assign(key, std::move(value));
        changedKeys_.insert(key);
    });
}

void CvrModelBase::unSetKey(const std::string& key) {
    changeKeys([&] {
        dictionary_.erase(key);
        changedKeys_.insert(key);
    });
}

void CvrModelBase::persistAllKey() {
    changeKeys([&] {
        if (!changedKeys_.empty()) writeLocked();
    });
}

std::optional<CvrModelBase::Value> CvrModelBase::getKey(const std::string& key) {
    const std::lock_guard lock(mutex_);
    loadLocked();
    const auto found = dictionary_.find(key);
    return found == dictionary_.end() ? std::nullopt : std::optional(found->second);
}

std::string CvrModelBase::textForKey(const std::string& key) {
    const auto value = getKey(key);
    const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? *text : "";
}

std::string CvrModelBase::bundleFileBytes() {
    const std::lock_guard lock(mutex_);
    loadLocked();
    return vorla::archivedData(dictionary_);
}

void CvrModelBase::checkVer() {
    const std::string version = facts().appVersion;
    const std::string seen = textForKey(keyVersion);
    change([&](Facts& facts) { facts.localVer = seen; });
    if (seen == version) return;
    {
        const std::lock_guard lock(mutex_);
        versionChanged_ = true;
    }
    CvrLogWarn("<WARN> CVR: local version %s change to the new version %s", seen.c_str(),
               version.c_str());
    persistKey(keyVersion, version);
    change([&](Facts& facts) { facts.localVer = version; });
}

bool CvrModelBase::isVersionChanged() const {
    const std::lock_guard lock(mutex_);
    return versionChanged_;
}

bool CvrModelBase::hasLastCrashNeedReport() {
    if (isVersionChanged()) {
        unSetKey(keyLastCrashReported);
        return false;
    }
    const auto value = getKey(keyLastCrashReported);
    const auto* needed = value ? std::get_if<bool>(&*value) : nullptr;
    return needed && *needed;
}

void CvrModelBase::persistLastCrashNeedReport(bool needed) {
    persistKey(keyLastCrashReported, needed);
}

int64_t CvrModelBase::getLastCrashTime() {
    if (isVersionChanged()) {
        unSetKey(keyLastCrashTime);
        return 0;
    }
    const auto value = getKey(keyLastCrashTime);
    const auto* time = value ? std::get_if<int64_t>(&*value) : nullptr;
    return time ? *time : 0;
}

void CvrModelBase::persistLastCrashTime(int64_t time) {
    if (time > 0) persistKey(keyLastCrashTime, time);
}

bool CvrModelBase::isLastCloseByCrash() {
    {
        const std::lock_guard lock(mutex_);
        if (lastCloseByCrash_) return *lastCloseByCrash_;
    }
    const bool crashed = hasLastCrashNeedReport();
    if (crashed) persistLastCrashNeedReport(false);
    const std::lock_guard lock(mutex_);
    return lastCloseByCrash_.emplace(lastCloseByCrash_.value_or(crashed));
}
