// What happens while the program runs: activation, the daily timer, user records, and the state
// that a crash would find.
#include <random>

#include "crash/CvrLog.h"
#include "crash/facts/CvrDeviceUtil.h"
#include "crash/module/CvrCrashModule.h"
#include "platform/base/Bundle.h"

namespace {

constexpr int64_t shortestGap = 1000;
constexpr unsigned longestTimerSlack = 600;

}  // namespace

void CvrCrashModule::registObserver() {
    const std::lock_guard lock(mutex_);
    observers_.clear();
    observers_.observe(vorla::NSApplicationWillBecomeActiveNotification,
                       [this](const auto&) { appResumed(); });
    for (const char* name : {vorla::NSApplicationWillResignActiveNotification,
                             vorla::NSApplicationDidResignActiveNotification})
        observers_.observe(name, [this](const auto&) { appEnterBackground(); });
}

void CvrCrashModule::unregistObserver() {
    const std::lock_guard lock(mutex_);
    observers_.clear();
}

void CvrCrashModule::appResumed() {
    CvrLogInfo("<INFO> CVR: ######### appResumed ");
    const int64_t now = model().now();
    model().change(
        [&](CvrModelBase::Facts& facts) { facts.resumeTime = facts.lastRecordTime = now; });
    {
        const std::lock_guard lock(mutex_);
        const int64_t last = std::exchange(lastResume_, now);
        if (now - last < shortestGap) return;
    }
    scheduler().async([this] {
        appCVRResumed();
        strategyQuery_.checkStrategyQuery();
    });
}

void CvrCrashModule::appEnterBackground() {
    CvrLogInfo("<INFO> CVR: ######### appEnterBackground ");
    const int64_t now = model().now();
    model().change([&](CvrModelBase::Facts& facts) {
        facts.backGroundTime = facts.lastRecordTime = now;
        if (facts.resumeTime == 0) facts.resumeTime = facts.startTime;
    });
    appCVREnterBack();
    scheduler().async([this] {
        model().persistAllKey();
        store().persistAllUserInfoDatas();
    });
}

void CvrCrashModule::appCVRStarted() {
    if ((isEnabled() || !localStrategy()) && userInfoUpload_.checkNeedUpload())
        saveSummary(CvrStartTypeFirst, model().facts().startTime);
}

void CvrCrashModule::appCVRResumed() {
    checkAndUploadUserInfo();
    environment_.capture.checkSignalHandler();
    environment_.capture.checkNSExceptionHandler();
}

void CvrCrashModule::checkAndUploadUserInfo() {
    if ((isEnabled() || !localStrategy()) && userInfoUpload_.checkNeedUpload())
        userInfoUpload_.startUserInfoUpload();
}

std::optional<CvrSummaryInfo> CvrCrashModule::creatSummaryInfo(CvrStartType startType,
                                                               int64_t withTime) {
    bool closed = false;
    {
        const std::lock_guard lock(mutex_);
        closed = !crashModuleEnabled_ && (localStrategy_ || hasSyncServer_);
    }
    if (closed) {
        CvrLogWarn("<WARN> CVR: server startegy closed Crash module, will not create");
        return std::nullopt;
    }
    const CvrModelBase::Facts facts = model().facts();
    CvrSummaryInfo info;
    __builtin_add_overflow(withTime, facts.serverTimeDelta, &info.startTime);
    info.time = info.startTime;
    info.startType = startType;
    info.userid = facts.userid;
    info.proc = facts.processName;
    info.sessionId = facts.sessionId;
    return info;
}

void CvrCrashModule::saveSummary(CvrStartType startType, int64_t time) {
    if (const auto info = creatSummaryInfo(startType, time)) store().saveOneData(*info);
}

void CvrCrashModule::insertUserChangeSm() {
    if (!isEnabled() || !isStarted()) return;
    CvrLogInfo("<INFO> CVR: create one summary info for user change");
    // The store may wait for another process: not on the host's thread.
    scheduler().async([this, info = creatSummaryInfo(CvrStartTypeUserChange, model().now())] {
        if (info) store().saveOneData(*info);
        userInfoUpload_.startUserInfoUpload();
    });
}

void CvrCrashModule::initDailySummaryInfoTimer() {
    std::random_device random;
    const int64_t slack = random() % longestTimerSlack + 1;
    const std::chrono::seconds delay(CvrDeviceUtil::secondsToMidnight(model().now() / 1000) +
                                     slack);
    uint64_t timer = 0;
    {
        const std::lock_guard lock(mutex_);
        timer = dailyTimer_ = ++lastTimer_;
    }
    scheduler().asyncAfter(delay, [this, timer] {
        {
            const std::lock_guard lock(mutex_);
            if (dailyTimer_ != timer) return;
        }
        insertDailySummaryInfo();
    });
}

void CvrCrashModule::closeDailySummaryInfodTimer() {
    const std::lock_guard lock(mutex_);
    dailyTimer_ = 0;
}

void CvrCrashModule::insertDailySummaryInfo() {
    scheduler().async([this] {
        CvrLogInfo("<INFO> CVR: create user info for daily using");
        initDailySummaryInfoTimer();
        saveSummary(CvrStartTypeDaily, model().now());
        checkAndUploadUserInfo();
    });
}

// The order in which states are made is the order in which they are published.
void CvrCrashModule::prepareCrash() {
    const std::lock_guard lock(prepareMutex_);
    const CvrModelBase::Facts facts = model().facts();
    const CvrFilePersistHandler::Prepared files = store().prepared();
    CvrPreparedCrash state;
    state.folder = files.folder;
    state.keyValueFile = model().bundleFilePath();
    state.crashMetaFile = files.folder + "/" + vorla::crash_index::indexName;
    state.userInfoFile = files.folder + "/" + CvrFilePersistHandler::userInfoName;
    state.lockFile = files.folder + "/" + vorla::StoreFolder::lockName;
    state.keyValueFileBytes = model().bundleFileBytes();
    state.userInfoFileBytes = files.userInfoBytes;
    state.appId = facts.appId;
    state.appVersion = facts.appVersion;
    state.bundleId = facts.bundleId;
    state.hardwareModel = facts.hardwareModel;
    state.osVer = facts.osVer;
    state.userid = facts.userid;
    state.openudid = facts.openudid;
    state.sdkVersion = facts.sdkVersion;
    state.sessionId = facts.sessionId;
    state.pIdentity = facts.pIdentity;
    state.processName = facts.processName;
    state.parentProcName = facts.parentProcName;
    state.resourcePath = vorla::Bundle::framework().resourcePath();
    state.parentProcId = facts.parentProcId;
    state.startTime = facts.startTime;
    state.backGroundTime = facts.backGroundTime;
    state.resumeTime = facts.resumeTime;
    state.lastRecordTime = facts.lastRecordTime;
    state.serverTimeDelta = facts.serverTimeDelta;
    state.valueMap = {{"A1", std::to_string(facts.memSize)},
                      {"A2", std::to_string(facts.diskSize)},
                      {"A5", facts.cpuArch},
                      {"A13", facts.isReet ? "true" : "false"},
                      {"A17", facts.country},
                      {"A23", facts.appVersion},
                      {"A24", facts.osVer}};
    for (const auto& [key, value] :
         {std::pair("A4", &facts.idfv), std::pair("productIdentify", &facts.pIdentity),
          std::pair("tavim", &facts.tavim)})
        if (!value->empty()) state.valueMap.emplace_back(key, *value);
    environment_.capture.prepare(state);
}
