#include "crash/module/CvrCrashModule.h"

#include <charconv>

#include "crash/CvrLog.h"
#include "crash/facts/CvrBundleUtil.h"
#include "crash/facts/CvrDeviceUtil.h"
#include "platform/base/VLLog.h"

namespace {

constexpr int64_t shortestInterval = 28800;
constexpr int64_t dayInterval = 86400;
constexpr std::chrono::seconds firstQueryDelay(2);

/// The value's leading digits, 0 for none.
int64_t integerValue(const CvrLocalStrategy& strategy, const char* key) {
    const auto found = strategy.valueMap.find(key);
    int64_t number = 0;
    if (found != strategy.valueMap.end()) {
        const std::string& text = found->second;
        std::from_chars(text.data(), text.data() + text.size(), number);
    }
    return number;
}

const char* outcome(bool success) {
    return success ? "success" : "failed";
}

}  // namespace

CvrCrashModule::CvrCrashModule(const CvrEnvironment& environment)
    : environment_(environment),
      queue_(environment.scheduler),
      crashUpload_(*this),
      strategyQuery_(*this),
      userInfoUpload_(*this) {
    CvrProtocolDataRegister::sharedInstance().registResponseObjectType(
        [] { return std::make_shared<CvrLocalStrategy>(); }, CvrCommandQueryStrategy);
    environment_.model.onChange = environment_.store.onChange = [this] { prepareCrash(); };
}

CvrCrashModule::~CvrCrashModule() {
    environment_.model.onChange = environment_.store.onChange = nullptr;
}

CvrNetServices CvrCrashModule::netServices() {
    return {environment_.model, environment_.scheduler, environment_.transport, queue_,
            environment_.networkAvaliable};
}

void CvrCrashModule::enableModule() {
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(crashModuleEnabled_, true)) return;
    }
    const int64_t now = model().now() / 1000 * 1000;
    model().change([&](CvrModelBase::Facts& facts) { facts.startTime = now; });
    // Earlier than the rest of the start, so that a crash from now on has them.
    initCrashProperties();
    CvrCapture& capture = environment_.capture;
    capture.installHandler();
    CvrLogAlways("<WORKFLOW>: sdk install signal handler %s, exception handler %s",
                 outcome(capture.checkSignalHandler()), outcome(capture.checkNSExceptionHandler()));
    bool listens = false;
    {
        const std::lock_guard lock(mutex_);
        listens = std::exchange(listening_, true);
    }
    if (!listens) capture.registCrashListerner(&crashUpload_);
    initDailySummaryInfoTimer();
    scheduler().async([this] { finishStart(); });
}

void CvrCrashModule::finishStart() {
    {
        const vorla::LogHold hold;
        const std::lock_guard lock(mutex_);
        if (std::exchange(inited_, true)) {
            CvrLogWarn("<WARN> CVR: sdk crash module has been initialized");
            return;
        }
    }
    // Of use to a server only, and the key store takes its time.
    const std::string tavim =
        hasEndpoint() ? CvrBundleUtil::getTavim(model(), environment_.keys) : std::string();
    std::string device = model().facts().openudid;
    if (device.empty()) device = CvrBundleUtil::getAnaOpenUdid(model(), environment_.keys);
    model().change([&](CvrModelBase::Facts& facts) {
        facts.tavim = tavim;
        if (facts.openudid.empty()) facts.openudid = device;
    });
    fetchCrashStrategyFormDB();
    if (!hasLocalDB()) {
        appCVRStarted();
        strategyQuery_.startStrategyQuery();
    } else {
        if (localStrategy()->queryEnable)
            scheduler().asyncAfter(firstQueryDelay,
                                   [this] { strategyQuery_.startStrategyQuery(); });
        checkAndEnable();
        if (!isEnabled()) {
            CvrLogWarn("<WARN> CVR: sdk crash module is disable");
            return;
        }
        CvrLogInfo("<INFO> CVR: sdk crash module is enable");
        appCVRStarted();
    }
    {
        const std::lock_guard lock(mutex_);
        cvrStarted_ = true;
    }
    registObserver();
    store().loadAllDatas();
    store().deleteAllInvalidCrashes();
}

void CvrCrashModule::disableModule() {
    const vorla::LogHold hold;
    const std::lock_guard lock(mutex_);
    if (!std::exchange(crashModuleEnabled_, false)) {
        CvrLogInfo("<INFO> CVR: crash module already uninstalled");
        return;
    }
    environment_.capture.uninstallHandler();
    closeDailySummaryInfodTimer();
    unregistObserver();
    CvrLogInfo("<INFO> CVR: crash module is disable");
}

bool CvrCrashModule::checkAndEnable() {
    const vorla::LogHold hold;
    const std::lock_guard lock(mutex_);
    const bool wanted = userEnabled_ && localStrategy_ && localStrategy_->enable;
    if (crashModuleEnabled_ && (!userEnabled_ || (localStrategy_ && !localStrategy_->enable))) {
        disableModule();
        return true;
    }
    if (crashModuleEnabled_ || !wanted) return false;
    enableModule();
    return true;
}

void CvrCrashModule::setUserEnabled(bool enabled) {
    const std::lock_guard lock(mutex_);
    userEnabled_ = enabled;
}

bool CvrCrashModule::isEnabled() const {
    const std::lock_guard lock(mutex_);
    return crashModuleEnabled_;
}

bool CvrCrashModule::isStarted() const {
    const std::lock_guard lock(mutex_);
    return cvrStarted_;
}

void CvrCrashModule::initCrashProperties() {
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(cpropInited_, true)) return;
    }
    const std::string name = CvrDeviceUtil::getProcessName();
    const std::string parent = CvrDeviceUtil::getParentProcessName();
    model().change([&](CvrModelBase::Facts& facts) {
        facts.isReet = CvrDeviceUtil::isReet();
        if (CvrDeviceUtil::getProcessId() > 0) facts.processId = CvrDeviceUtil::getProcessId();
        if (CvrDeviceUtil::getParentProcessId() > 0)
            facts.parentProcId = CvrDeviceUtil::getParentProcessId();
        if (!name.empty()) facts.processName = name;
        if (!parent.empty()) facts.parentProcName = parent;
        facts.cpuArch = CvrDeviceUtil::getCPUArchName();
        facts.diskSize = CvrDeviceUtil::getTotalSpace();
        facts.memSize = CvrDeviceUtil::getTotalMemory();
        facts.country = CvrDeviceUtil::country();
        facts.language = CvrDeviceUtil::language();
    });
    environment_.capture.setProcName(name);
}

bool CvrCrashModule::fetchCrashStrategyFormDB() {
    if (localStrategy()) return false;
    auto strategy = store().loadCommonStrategyFile();
    if (!strategy) return false;
    const int64_t interval = integerValue(*strategy, "queryInterval");
    {
        const std::lock_guard lock(mutex_);
        localStrategy_ = std::move(strategy);
        hasLocalDB_ = true;
    }
    if (interval >= 1)
        strategyQuery_.setQueryInterval(interval < shortestInterval ? dayInterval : interval);
    const auto kept = localStrategy();
    if (const auto merge = kept->valueMap.find("isMerge"); merge != kept->valueMap.end())
        environment_.capture.setExpMergeStrategy(merge->second == "true");
    return true;
}

bool CvrCrashModule::processStrategy(const std::shared_ptr<const CvrLocalStrategy>& strategy) {
    if (!strategy) return false;
    {
        const std::lock_guard lock(mutex_);
        if (localStrategy_ && localStrategy_->isEqual(*strategy)) return true;
        localStrategy_ = strategy;
        hasLocalDB_ = true;
    }
    const auto merge = strategy->valueMap.find("isMerge");
    if (merge != strategy->valueMap.end())
        environment_.capture.setExpMergeStrategy(merge->second == "true");
    CvrLogInfo("<INFO> CVR: sdk got remote strategy, %s", strategy->debugDescription().c_str());
    store().saveCommonStrategy(*strategy);
    return true;
}

std::shared_ptr<const CvrLocalStrategy> CvrCrashModule::localStrategy() const {
    const std::lock_guard lock(mutex_);
    return localStrategy_;
}

bool CvrCrashModule::hasLocalDB() const {
    const std::lock_guard lock(mutex_);
    return hasLocalDB_;
}

void CvrCrashModule::setHasSyncServer(bool reached) {
    const std::lock_guard lock(mutex_);
    hasSyncServer_ = reached;
}

// A strategy may send reports elsewhere, but not out of the encrypted transport, nor to anything
// that is no server.
std::string CvrCrashModule::allowedUrl(const std::string& wanted) const {
    const std::string lower = vorla::asciiLowercase(wanted.substr(0, 8));
    const bool secure = lower.starts_with("https://");
    if (!secure && !lower.starts_with("http://")) return {};
    const bool builtInSecure =
        vorla::asciiLowercase(environment_.syncEndpoint().substr(0, 8)) == "https://";
    return secure || !builtInSecure ? wanted : std::string();
}

std::string CvrCrashModule::queryUrl() const {
    const auto strategy = localStrategy();
    const std::string url = strategy ? allowedUrl(strategy->url) : std::string();
    return url.empty() ? environment_.syncEndpoint() : url;
}

std::string CvrCrashModule::targetUrl() const {
    const auto strategy = localStrategy();
    const std::string url = strategy ? allowedUrl(strategy->expUrl) : std::string();
    return url.empty() ? queryUrl() : url;
}
