#include "crash/CvrCrashHandler.h"

#include "crash/CvrNSExpHandler.h"
#include "crash/CvrSigHandler.h"
#include "crash/handler/SessionState.h"

void (*exp_call_back_func)() = nullptr;

namespace {

using vorla::crash::sessionState;

constexpr size_t kLongestAttachLog = 10240;

/// The first characters of a UTF-8 text.
std::string firstCharacters(const std::string& text, size_t count) {
    size_t place = 0;
    for (; place < text.size(); ++place) {
        const bool starts = (static_cast<unsigned char>(text[place]) & 0xC0) != 0x80;
        if (starts && count-- == 0) break;
    }
    return text.substr(0, place);
}

}  // namespace

CvrCrashHandler& CvrCrashHandler::sharedInstance() {
    static vorla::NoDestructor<CvrCrashHandler> instance;
    return *instance;
}

void CvrCrashHandler::prepare(const CvrPreparedCrash& state) {
    const std::lock_guard lock(mutex_);
    sessionState().prepared.publish(state);
}

void CvrCrashHandler::installHandler() {
    CvrSigHandler::sharedInstance().install();
    CvrNSExpHandler::sharedInstance().install();
}

void CvrCrashHandler::uninstallHandler() {
    CvrNSExpHandler::sharedInstance().uninstall();
    CvrSigHandler::sharedInstance().uninstall();
}

void CvrCrashHandler::registCrashListerner(CvrCrashListener* listener) {
    const std::lock_guard lock(mutex_);
    for (auto& place : sessionState().listeners) {
        if (place) continue;
        place = listener;
        return;
    }
}

void CvrCrashHandler::setExpMergeUpload(bool merge) {
    const std::lock_guard lock(mutex_);
    userSetMerge_ = true;
    mergeExp_ = merge;
    sessionState().mergeUpload = merge;
}

void CvrCrashHandler::setExpMergeStrategy(bool merge) {
    const std::lock_guard lock(mutex_);
    serverMerge_ = merge;
    if (!userSetMerge_) sessionState().mergeUpload = merge;
}

bool CvrCrashHandler::isExpMergeUpload() const {
    return sessionState().mergeUpload;
}

void CvrCrashHandler::setAttachLog(const std::string& text) {
    const std::lock_guard lock(mutex_);
    sessionState().attachLog.publish(firstCharacters(text, kLongestAttachLog));
}

std::string CvrCrashHandler::attachLog() const {
    const std::lock_guard lock(mutex_);
    const std::string* const text = sessionState().attachLog.get();
    return text ? *text : std::string();
}

void CvrCrashHandler::setEnableLastCloseRecord(bool enable) {
    sessionState().enableLastCloseRecord = enable;
}

void CvrCrashHandler::setExcludeShortNames(const std::vector<std::string>& names) {
    const std::lock_guard lock(mutex_);
    sessionState().excludeShortNames.publish(names);
}

void CvrCrashHandler::setIncludeShortNames(const std::vector<std::string>& names) {
    const std::lock_guard lock(mutex_);
    sessionState().includeShortNames.publish(names);
}
