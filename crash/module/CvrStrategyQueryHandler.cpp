#include "crash/module/CvrStrategyQueryHandler.h"

#include "crash/CvrLog.h"
#include "crash/facts/CvrDeviceUtil.h"
#include "crash/module/CvrCrashModule.h"

namespace {

constexpr int64_t shortestInterval = 28800;
constexpr int64_t dayInterval = 86400;
constexpr std::chrono::seconds retryDelay(3600);
constexpr const char* keyLastDay = "last_st_time";

}  // namespace

CvrStrategyQueryHandler::CvrStrategyQueryHandler(CvrCrashModule& module)
    : module_(module),
      lastStrategyDay_(module.model().textForKey(keyLastDay)),
      queryInterval_(dayInterval) {}

void CvrStrategyQueryHandler::setQueryInterval(int64_t seconds) {
    const std::lock_guard lock(mutex_);
    queryInterval_ = seconds;
}

int64_t CvrStrategyQueryHandler::queryInterval() const {
    const std::lock_guard lock(mutex_);
    return queryInterval_ < shortestInterval ? dayInterval : queryInterval_;
}

void CvrStrategyQueryHandler::setExecuting(bool executing) {
    const std::lock_guard lock(mutex_);
    isExecuting_ = executing;
}

void CvrStrategyQueryHandler::checkStrategyQuery(double time) {
    const auto strategy = module_.localStrategy();
    if (strategy && !strategy->queryEnable) {
        CvrLogWarn("<WARN> CVR: strategy closed query strategy");
        return;
    }
    const double now = time != 0 ? time : static_cast<double>(module_.model().now()) / 1000;
    const std::string today = CvrDeviceUtil::getDayTimeStrBy(static_cast<int64_t>(now));
    const bool versionChanged = module_.model().isVersionChanged();
    const auto interval = static_cast<double>(queryInterval());
    {
        const std::lock_guard lock(mutex_);
        if (isExecuting_) return;
        if (lastStrategyDay_ == today && !versionChanged) return;
        if (lastQueryTime_ != 0 && now - lastQueryTime_ < interval) return;
    }
    startStrategyQuery();
}

void CvrStrategyQueryHandler::startStrategyQuery() {
    if (!module_.hasEndpoint()) return;
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(isExecuting_, true)) return;
    }
    CvrUserInfoUploadHandler& users = module_.userInfoUploadHandler();
    const auto body = users.haveUserInfoData() ? users.getStartUploadData() : nullptr;
    const auto strategy = module_.localStrategy();
    CvrRequestPackage package(module_.model().facts(),
                              body ? CvrCommandQueryWithUserInfo : CvrCommandQueryStrategy, body);
    std::make_shared<CvrNetRequest>(module_.netServices(), module_.queryUrl(), std::move(package),
                                    this, strategy.get())
        ->startAsync();
}

void CvrStrategyQueryHandler::finishWithResponse(
    const std::shared_ptr<CvrResponsePackage>& response, const CvrRequestPackage& reqPkg) {
    setExecuting(false);
    if (response && response->result == 0) return succeeded(*response, reqPkg);
    if (!response)
        CvrLogError("<ERROR> CVR: CvrStrategyQueryHandler failed with nil rsponse");
    else
        CvrLogError("<ERROR> CVR: StrategyQueryHandler failed with  error result code %i ",
                    response->result);
    failQuery(reqPkg);
}

void CvrStrategyQueryHandler::succeeded(const CvrResponsePackage& response,
                                        const CvrRequestPackage& reqPkg) {
    const int64_t now = module_.model().now() / 1000;
    const std::string today = CvrDeviceUtil::getDayTimeStrBy(now);
    {
        const std::lock_guard lock(mutex_);
        lastQueryTime_ = static_cast<double>(now);
    }
    module_.setHasSyncServer(true);
    if (const auto strategy = response.strategy()) module_.processStrategy(strategy);
    module_.checkAndEnable();
    const auto* sent = dynamic_cast<const CvrUserInfoPackage*>(reqPkg.sBuffer.get());
    if (sent) module_.userInfoUploadHandler().cleanUserInfoData(sent);
    if (!reqPkg.sBuffer) module_.checkAndUploadUserInfo();
    {
        const std::lock_guard lock(mutex_);
        lastStrategyDay_ = today;
    }
    module_.model().setKey(keyLastDay, today);
}

void CvrStrategyQueryHandler::failWithResponse(const CvrError& error,
                                               const CvrRequestPackage& reqPkg) {
    setExecuting(false);
    if (error.errnoVal != CvrError::None)
        CvrLogError("<ERROR> CVR: CvrStrategyQueryHandler failed with eror %s",
                    error.description.c_str());
    else
        CvrLogError("<ERROR> CVR: CvrStrategyQueryHandler failed with unkown eror");
    failQuery(reqPkg);
}

void CvrStrategyQueryHandler::failQuery(const CvrRequestPackage& reqPkg) {
    if (reqPkg.sBuffer) module_.userInfoUploadHandler().cleanUserInfoData(nullptr);
    if (module_.hasLocalDB()) return;
    module_.scheduler().asyncAfter(retryDelay, [this] { startStrategyQuery(); });
}
