#include <vorla/CrashReporter.h>

#include <atomic>
#include <memory>
#include <mutex>

#include "crash/CaughtError.h"
#include "crash/CvrCrashData.h"
#include "crash/CvrCrashHandler.h"
#include "crash/CvrLog.h"
#include "crash/CvrNSExpHandler.h"
#include "crash/CvrSigHandler.h"
#include "crash/CvrStackCollector.h"
#include "crash/module/CvrCrashModule.h"
#include "platform/base/LibraryCopy.h"
#include "platform/base/VLLog.h"

namespace {

constexpr int everythingLogged = 5;

/// The reporter's lock, and whether it is installed.
struct State {
    std::mutex mutex;
    std::atomic<bool> installed = false;
};
State& state() {
    static vorla::NoDestructor<State> instance;
    return *instance;
}

CvrCrashModule& module() {
    return CvrCrashModule::sharedInstance();
}
CvrModelBase& model() {
    return CvrModelBase::getDefualtAnaModel();
}

bool isBlank(const std::string& text) {
    return text.find_first_not_of(" \t\r\n\v\f") == std::string::npos;
}

/// Sets a fact unless the value is empty; whether it is another one now.
bool setFact(std::string CvrModelBase::Facts::*field, const std::string& value) {
    if (value.empty() || model().facts().*field == value) return false;
    model().change([&](CvrModelBase::Facts& facts) { facts.*field = value; });
    return true;
}

}  // namespace

CrashReporter& CrashReporter::sharedInstance() {
    static CrashReporter instance;
    return instance;
}

bool CrashReporter::isInstalled() const {
    return state().installed;
}

bool CrashReporter::installWithAppkey(const std::string& appKey) {
    if (isBlank(appKey) || !vorla::isServingServices()) return false;
    CvrCrashModule& crashes = module();
    model().change([&](CvrModelBase::Facts& facts) { facts.appId = appKey; });
    model().checkVer();
    const CvrModelBase::Facts facts = model().facts();
    CvrLogAlways("<WORKFLOW>: init sdk[%s] with appid[%s] in the bundle [%s] on the device[%s, %s]",
                 facts.sdkVersion.c_str(), appKey.c_str(), facts.bundleId.c_str(),
                 facts.hardwareModel.c_str(), facts.osVer.c_str());
    const vorla::LogHold hold;
    const std::lock_guard lock(state().mutex);
    if (state().installed.exchange(true)) {
        CvrLogWarn("<WARN> CVR: sdk has been initialized");
        return false;
    }
    const int64_t now = model().now();
    model().change([&](CvrModelBase::Facts& changed) { changed.startTime = now; });
    crashes.enableModule();
    // Looking for crashes takes the disk: not on the host's thread.
    crashes.scheduler().async([&crashes] {
        CvrCrashUploadHandler& upload = crashes.crashUploadHandler();
        if (upload.expExist()) upload.uploadCrashes();
    });
    return true;
}

void CrashReporter::uninstall() {
    const vorla::LogHold hold;
    const std::lock_guard lock(state().mutex);
    if (!state().installed.exchange(false)) {
        CvrLogWarn("<WARN> CVR: crash reporter already uninstalled.");
        return;
    }
    CvrLogInfo("<INFO> CVR: crash reporter uninstalling...");
    module().disableModule();
}

void CrashReporter::resetDBPath(const std::string& path) {
    model().resetBundlePath(path);
    CvrFilePersistHandler::sharedInstance().changeDbPath(path);
}

void CrashReporter::enableNSExceptionReporter(bool enable) {
    CvrNSExpHandler::sharedInstance().enableHandler(enable);
}
void CrashReporter::enableSignalErrorReporter(bool enable) {
    CvrSigHandler::sharedInstance().enableHandler(enable);
}
void CrashReporter::setEnableSymbolicateInProcess(bool enable) {
    CvrStackCollector::sharedInstance().setNeedSymbol(enable);
}
void CrashReporter::setExpMergeUpload(bool merge) {
    CvrCrashHandler::sharedInstance().setExpMergeUpload(merge);
}
bool CrashReporter::setExcludeShortName(const std::vector<std::string>& names) {
    CvrCrashHandler::sharedInstance().setExcludeShortNames(names);
    return true;
}
bool CrashReporter::setIncludeShortName(const std::vector<std::string>& names) {
    CvrCrashHandler::sharedInstance().setIncludeShortNames(names);
    return true;
}
bool CrashReporter::setLastCloseByIncludExclued(bool enable) {
    CvrCrashHandler::sharedInstance().setEnableLastCloseRecord(enable);
    return true;
}
void CrashReporter::enableSignalHandlerCheckable(bool enable) {
    CvrNSExpHandler::sharedInstance().enableSignalHandlerCheck(enable);
}
void CrashReporter::setUserMachHandler(bool enable) {
    CvrCrashHandler::sharedInstance().setUserMachHandler(enable);
}

void CrashReporter::setBundleId(const std::string& bundleId) {
    setFact(&CvrModelBase::Facts::bundleId, bundleId);
}
void CrashReporter::setBundleVer(const std::string& version) {
    if (version.empty()) return;
    setFact(&CvrModelBase::Facts::appVersion, version);
    model().checkVer();
}
void CrashReporter::setUserId(const std::string& userId) {
    if (setFact(&CvrModelBase::Facts::userid, userId)) module().insertUserChangeSm();
}
void CrashReporter::setDeviceId(const std::string& deviceId) {
    if (setFact(&CvrModelBase::Facts::openudid, deviceId)) module().insertUserChangeSm();
}
void CrashReporter::setChannel(const std::string& channel) {
    setFact(&CvrModelBase::Facts::channel, channel);
}

void CrashReporter::addSessionEvent(const std::string& event) {
    CvrCrashData::sharedInstance().appendSessionEvent(event);
}
void CrashReporter::setUserData(const std::string& key, const std::string& value) {
    CvrCrashData::sharedInstance().addUserMapData(key, value);
}
void CrashReporter::setScene(uint64_t scene) {
    CvrCrashData::sharedInstance().setScene(scene);
}
void CrashReporter::addSceneValue(const std::string& value, const std::string& forKey) {
    CvrCrashData::sharedInstance().addSceneValue(value, forKey);
}
void CrashReporter::setAttachLog(const std::string& text) {
    CvrCrashHandler::sharedInstance().setAttachLog(text);
}

void CrashReporter::enableLog(bool enable) {
    setCvrLogLevel(enable ? everythingLogged : 0);
}

bool CrashReporter::isLastCloseByCrash() {
    return model().isLastCloseByCrash();
}
bool CrashReporter::expExist() {
    return module().crashUploadHandler().expExist();
}
bool CrashReporter::checkAndUpload() {
    return expExist() && module().crashUploadHandler().uploadCrashes();
}
size_t CrashReporter::storedCrashCount() const {
    return CvrFilePersistHandler::sharedInstance().storedCrashCount();
}

bool CrashReporter::checkSignalHandler() {
    return CvrSigHandler::sharedInstance().checkHandler();
}
bool CrashReporter::checkNSExceptionHandler() {
    return CvrNSExpHandler::sharedInstance().checkHandler();
}

std::string CrashReporter::sdkVersion() const {
    return model().facts().sdkVersion;
}
std::string CrashReporter::deviceIdentifier() const {
    return model().facts().openudid;
}

void CrashReporter::reportException(const std::exception& exception, const std::string& message) {
    if (!isInstalled()) {
        CvrLogAlways("The sdk has not been initilized");
        return;
    }
    const CaughtError error(exception, message);
    error.throwException();
    CvrLogInfo(
        "<INFO> CVR: Report an NSException: \n {\n%s : %s \nRetrace Stack: \n%s \n"
        "Trace Stack: \n%s \n}",
        getCrashType().c_str(), getCurrentException().c_str(), getCrashStack().c_str(), "");
}
void CrashReporter::reportError(const std::string& error, const std::string& reason,
                                const std::string& callStack, const std::string& threadScenes) {
    if (!isInstalled()) {
        CvrLogAlways("The sdk has not been initilized");
        return;
    }
    CvrLogInfo("<INFO> CVR: Report an Error: \n { \n%s : %s \nTrace Stack: \n%s  \n}",
               error.c_str(), reason.c_str(), callStack.c_str());
    CaughtError(error, reason, callStack, threadScenes).throwException();
}

std::string CrashReporter::getCrashType() const {
    return CvrCrashData::type();
}
std::string CrashReporter::getCurrentException() const {
    return CvrCrashData::error();
}
std::string CrashReporter::getCrashStack() const {
    return CvrCrashData::crashStack();
}
std::string CrashReporter::getCrashLog() const {
    return CvrCrashData::crashlog();
}

void CrashReporter::applicationWillBecomeActive() {
    if (module().isStarted()) module().appResumed();
}
void CrashReporter::applicationWillResignActive() {
    if (module().isStarted()) module().appEnterBackground();
}

void CrashReporter::reportUnityExceptionWithName(const std::string& /*name*/,
                                                 const std::string& /*reason*/,
                                                 const std::string& /*stack*/) {
    CvrLogAlways("The method has not implementated!");
}
void CrashReporter::reportError(const std::string& error, const std::string& log) {
    if (isInstalled())
        CvrLogAlways("Report an Error: \n { \n%s \n %s \n}", error.c_str(), log.c_str());
    CvrLogAlways("The sdk has not been initilized");
}
void CrashReporter::enableBlockMonitor(bool /*enable*/, bool /*autoReport*/) {}
void CrashReporter::startBlockMonitor() {}
void CrashReporter::stopBlockMonitor() {}
bool CrashReporter::checkBlockDataExistAndReport() {
    return false;
}

void CrashReporter::testThrowNSException() {
    CvrLogAlways("[Test] sdk will throw an NSRangeException for test");
    const std::vector<int> oneElement(1);
    (void)oneElement.at(2);
}

void CrashReporter::testThrowCxxError() {
    CvrLogAlways("[Test] sdk will throw a c++ error for test");
    // A page that is gone is a released object that is sure to fault.
    volatile int* const released = reinterpret_cast<int*>(uintptr_t{0xdead000});
    *released = 1;
}
