#include "crash/module/CvrUserInfoUploadHandler.h"

#include "crash/CvrLog.h"
#include "crash/facts/CvrDeviceUtil.h"
#include "crash/module/CvrCrashModule.h"
#include "platform/base/VLLog.h"

namespace {

constexpr const char* keyLastDay = "user_info_uploaed_day";

std::map<std::string, std::string> values(const CvrModelBase::Facts& facts) {
    return {{"A1", std::to_string(facts.memSize)},
            {"A2", std::to_string(facts.diskSize)},
            {"A5", facts.cpuArch},
            {"A13", facts.isReet ? "true" : "false"},
            {"A23", facts.appVersion},
            {"A24", facts.osVer}};
}

}  // namespace

CvrUserInfoUploadHandler::CvrUserInfoUploadHandler(CvrCrashModule& module)
    : module_(module), lastUploadDay_(module.model().textForKey(keyLastDay)) {}

std::string CvrUserInfoUploadHandler::today() const {
    return CvrDeviceUtil::getDayTimeStrBy(module_.model().now() / 1000);
}

int64_t CvrUserInfoUploadHandler::lastUploadTime() const {
    const std::lock_guard lock(mutex_);
    return lastUploadTime_;
}

bool CvrUserInfoUploadHandler::checkNeedUpload() {
    const auto strategy = module_.localStrategy();
    const bool versionChanged = module_.model().isVersionChanged();
    const std::string day = today();
    const vorla::LogHold hold;
    const std::lock_guard lock(mutex_);
    if (uplaoding_) return false;
    if (strategy && !strategy->userInfoEnable) {
        CvrLogWarn("<WARN> CVR: strategy closed userinfo upload");
        return false;
    }
    if (lastUploadDay_.empty() || versionChanged || day.empty()) return true;
    if (lastUploadDay_ != day) return true;
    CvrLogWarn("<WARN> CVR: sdk has already report user info today");
    return false;
}

bool CvrUserInfoUploadHandler::haveUserInfoData() {
    return checkNeedUpload() && module_.store().getCurrSize() > 0;
}

std::shared_ptr<const CvrUserInfoPackage> CvrUserInfoUploadHandler::getStartUploadData() {
    const vorla::LogHold hold;
    const std::lock_guard lock(mutex_);
    if (uplaoding_) {
        CvrLogWarn("<WARN> CVR: init userinfo upload  executing, will retrun");
        return nullptr;
    }
    auto claim = module_.store().claim(CvrFilePersistHandler::userInfoClaim);
    if (!claim) return nullptr;
    module_.store().refreshUserInfoDatas();
    const CvrModelBase::Facts facts = module_.model().facts();
    auto package = std::make_shared<CvrUserInfoPackage>();
    package->type = isStart_ ? 2 : 1;
    package->proceName = facts.processName;
    package->deviceId = facts.openudid;
    package->valueMap = values(facts);
    package->summaryInfos = module_.store().getAllDatas();
    smcount_ += package->summaryInfos.size();
    if (smcount_ < 1) return nullptr;
    uplaoding_ = true;
    isStart_ = true;
    claim_ = std::move(claim);
    return package;
}

void CvrUserInfoUploadHandler::startUserInfoUpload() {
    if (!module_.hasEndpoint()) return;
    {
        const std::lock_guard lock(mutex_);
        smcount_ = 0;
    }
    const auto body = getStartUploadData();
    if (!body) return;
    const auto strategy = module_.localStrategy();
    CvrRequestPackage package(module_.model().facts(), CvrCommandUserInfo, body);
    std::make_shared<CvrNetRequest>(module_.netServices(), module_.queryUrl(), std::move(package),
                                    this, strategy.get())
        ->startAsync();
}

void CvrUserInfoUploadHandler::endUpload() {
    const std::lock_guard lock(mutex_);
    uplaoding_ = false;
    claim_.release();
}

bool CvrUserInfoUploadHandler::cleanUserInfoData(const CvrUserInfoPackage* package) {
    const bool clean = package && !package->summaryInfos.empty();
    if (clean) {
        CvrLogInfo("<INFO> CVR: UserInfoUploadHandler clean  %d records ",
                   static_cast<int>(package->summaryInfos.size()));
        module_.store().deleteDatas(package->summaryInfos);
        const std::string day = today();
        {
            const std::lock_guard lock(mutex_);
            lastUploadTime_ = module_.model().now();
            lastUploadDay_ = day;
        }
        module_.model().setKey(keyLastDay, day);
    }
    endUpload();
    return clean;
}

void CvrUserInfoUploadHandler::finishWithResponse(
    const std::shared_ptr<CvrResponsePackage>& response, const CvrRequestPackage& reqPkg) {
    const auto* sent = dynamic_cast<const CvrUserInfoPackage*>(reqPkg.sBuffer.get());
    if (!response) {
        CvrLogError("<ERROR> CVR:  UserInfoUploadHandler failed with nil rsponse");
    } else if (response->result != 0) {
        CvrLogError("<ERROR> CVR:  UserInfoUploadHandler failed with  error result code %i ",
                    response->result);
    } else if (sent) {
        cleanUserInfoData(sent);
        CvrLogInfo("<INFO> CVR:  UserInfoUploadHandler success finish request with %d records ",
                   static_cast<int>(sent->summaryInfos.size()));
    }
    endUpload();
}

void CvrUserInfoUploadHandler::failWithResponse(const CvrError& error,
                                                const CvrRequestPackage& /*reqPkg*/) {
    endUpload();
    if (error.errnoVal != CvrError::None)
        CvrLogError("<ERROR> CVR: CvrUserInfoUploadHandler failed with eror %s",
                    error.description.c_str());
    else
        CvrLogError("<ERROR> CVR: CvrUserInfoUploadHandler failed with unkown eror");
    restartUpload();
}
