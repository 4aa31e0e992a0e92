#include "crash/module/CvrCrashUploadHandler.h"

#include <algorithm>
#include <thread>

#include "crash/CvrLog.h"
#include "crash/facts/CvrDeviceUtil.h"
#include "crash/module/CvrCrashModule.h"

namespace {

constexpr std::chrono::seconds gapBetweenCrashes(120);
/// More than one, to know whether another upload must follow.
constexpr int32_t lookedAt = 2;
constexpr const char* keyVersion = "A23";

int crashCount(const std::vector<CvrExpObj>& exps) {
    int count = 0;
    for (const CvrExpObj& exp : exps) count += std::max(exp.dcount, 1);
    return count;
}

}  // namespace

bool CvrCrashUploadHandler::isUploading() const {
    const std::lock_guard lock(mutex_);
    return isUploading_;
}

void CvrCrashUploadHandler::setCanUploadDelegate(CvrCanUploadDelegate* delegate) {
    const std::lock_guard lock(mutex_);
    cranUploadDel_ = delegate;
}

bool CvrCrashUploadHandler::uploadCrashes() {
    module_.scheduler().async([this] { doUpload(); });
    return true;
}

bool CvrCrashUploadHandler::doUpload() {
    if (isUploading()) {
        CvrLogWarn("<WARN> CVR: crash is uploading, will not doUpload");
        return false;
    }
    if (!module_.hasEndpoint()) return false;
    // Of several processes of this host one sends; what it has sent is gone when it lets go.
    auto claim = module_.store().claim(CvrFilePersistHandler::crashClaim);
    if (!claim) return false;
    const std::vector<CvrExpObj> crashes = getCrashToUpload(lookedAt);
    if (crashes.empty()) return false;
    if (crashes.size() > 1)
        module_.scheduler().asyncAfter(gapBetweenCrashes, [this] {
            CvrLogInfo("<INFO> CVR: uplaod left crashes");
            uploadCrashes();
        });
    {
        const std::lock_guard lock(mutex_);
        claim_ = std::move(claim);
    }
    return doUploadExps({crashes.front()}, "", "", false, nullptr);
}

std::vector<CvrExpObj> CvrCrashUploadHandler::getCrashToUpload(int32_t limit) {
    if (limit <= 0) return {};
    CvrFilePersistHandler& store = module_.store();
    store.loadAllDatas();
    const bool merges = module_.isExpMergeUpload();
    if (merges) cleanInvalidExp();
    std::vector<CvrExpObj> crashes =
        merges ? store.getCrashesNeedUpload(limit) : store.getAllCrashed(limit);
    const std::string version = module_.model().facts().appVersion;
    std::erase_if(crashes, [&](const CvrExpObj& crash) {
        const auto found = crash.valueMap.find(keyVersion);
        if (found == crash.valueMap.end() || found->second == version) return false;
        CvrLogWarn("<WARN> CVR: got hsitory crash, will not upload");
        store.deleteCrash(crash);
        return true;
    });
    return crashes;
}

bool CvrCrashUploadHandler::begin(bool isManual, CvrManualUploadDelegate* delegate) {
    const std::lock_guard lock(mutex_);
    if (isUploading_) return false;
    isUploading_ = true;
    uploadByUser_ = isManual;
    del_ = delegate;
    return true;
}

bool CvrCrashUploadHandler::doUploadExps(const std::vector<CvrExpObj>& exps,
                                         const std::string& withBundleId,
                                         const std::string& bundleVer, bool isManual,
                                         CvrManualUploadDelegate* delegate) {
    if (exps.empty() || !module_.hasEndpoint()) return false;
    if (!begin(isManual, delegate)) {
        CvrLogWarn("<WARN> CVR: crash is uploading, wait");
        return false;
    }
    auto body = std::make_shared<CvrExceptionUploadPackage>();
    body->list = exps;
    auto package = CvrRequestPackage::createPackageForBlockData(module_.model().facts(), body);
    if (!withBundleId.empty()) package.bundleId = withBundleId;
    if (!bundleVer.empty()) package.productVersion = bundleVer;
    const auto strategy = module_.localStrategy();
    auto request = std::make_shared<CvrNetRequest>(module_.netServices(), module_.targetUrl(),
                                                   std::move(package), this, strategy.get());
    request->priority = CvrNetRequestBase::priorityBeside;
    request->checkNetStatus = false;
    request->startAsync();
    return true;
}

void CvrCrashUploadHandler::end(bool succeeded) {
    CvrManualUploadDelegate* manual = nullptr;
    CvrCanUploadDelegate* asked = nullptr;
    {
        const std::lock_guard lock(mutex_);
        isUploading_ = false;
        claim_.release();
        manual = uploadByUser_ ? del_ : nullptr;
        asked = cranUploadDel_;
    }
    if (manual && succeeded) manual->onCrashUploadSucess();
    if (manual && !succeeded) manual->onCrashUploadFailed();
    if (asked) module_.scheduler().async([asked] { (void)asked->isUploadAllowed(); });
}

void CvrCrashUploadHandler::finishWithResponse(const std::shared_ptr<CvrResponsePackage>& response,
                                               const CvrRequestPackage& reqPkg) {
    const auto* sent = dynamic_cast<const CvrExceptionUploadPackage*>(reqPkg.sBuffer.get());
    const bool succeeded = response && response->result == 0 && sent;
    if (!response) {
        CvrLogError("<ERROR> CVR:  CrashUploadHandler failed with nil rsponse");
    } else if (succeeded) {
        doUploadPostProcess(sent->list);
        CvrLogInfo(
            "<INFO> CVR:  CrashUploadHandler SUCC finish crash uploading with %d records "
            "and %d crashes",
            static_cast<int>(sent->list.size()), crashCount(sent->list));
    } else {
        CvrLogError("<ERROR> CVR:  CrashUploadHandler failed with error code");
    }
    const auto strategy = response ? response->strategy() : nullptr;
    if (strategy) module_.processStrategy(strategy);
    end(succeeded);
}

void CvrCrashUploadHandler::failWithResponse(const CvrError& error,
                                             const CvrRequestPackage& /*reqPkg*/) {
    if (error.errnoVal != CvrError::None)
        CvrLogError("<ERROR> CVR: CrashUploadHandler failed with eror %s",
                    error.description.c_str());
    else
        CvrLogError("<ERROR> CVR: CrashUploadHandler failed with unkown eror");
    end(false);
}

void CvrCrashUploadHandler::doUploadPostProcess(const std::vector<CvrExpObj>& exps) {
    CvrFilePersistHandler& store = module_.store();
    if (!module_.isExpMergeUpload()) {
        store.deleteCrashes(exps);
        return;
    }
    const int64_t today = CvrDeviceUtil::getTimeOfTodayStart(module_.model().now());
    for (CvrExpObj exp : exps) {
        if (exp.time < today) {
            store.deleteCrash(exp);
            CvrLogInfo("<INFO> CVR: cleaned exp with count %d", static_cast<int>(exp.dcount));
        } else {
            exp.dcount = 0;
            store.updateOneCrash(exp, true);
            CvrLogInfo("<INFO> CVR: update exp with count to %d", static_cast<int>(exp.dcount));
        }
    }
}

void CvrCrashUploadHandler::onCrashHappened(const CvrExpObj& /*exp*/) {}

void CvrCrashUploadHandler::checkAndUploadAfterCrash(const CvrExpObj& exp) {
    constexpr int mostWaits = 5;
    CvrLogInfo("<INFO> CVR: start upload crash and wait for 5s");
    doUploadExps({exp}, "", "", false, nullptr);
    if (!isUploading()) return;
    CvrLogWarn(
        "<WARN> CVR: crash less than 1s after start or uploading, it will wait a moment for "
        "uploading the crash");
    for (int i = 1; i <= mostWaits && isUploading(); ++i) {
        CvrLogInfo("<INFO> CVR: waiting %d sec.", i);
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

bool CvrCrashUploadHandler::expExist() {
    if (module_.model().isLastCloseByCrash()) return true;
    module_.store().loadAllDatas();
    if (module_.isExpMergeUpload() && !module_.store().getCrashesNeedDel().empty())
        return cleanInvalidExp();
    return module_.store().hasCrash();
}

bool CvrCrashUploadHandler::cleanInvalidExp() {
    const std::vector<CvrExpObj> old = module_.store().getCrashesNeedDel();
    return !old.empty() && module_.store().deleteCrashes(old);
}
