#include "crash/CvrCrashData.h"

#include <algorithm>

#include "crash/CvrLog.h"
#include "crash/handler/CaughtReport.h"
#include "crash/handler/FaultHandler.h"
#include "crash/handler/SessionState.h"
#include "platform/base/VLLog.h"
#include "platform/base/raii.h"

namespace {

using vorla::crash::sessionState;

constexpr size_t kMostEvents = 100;
constexpr size_t kLongestEvent = 200;
constexpr size_t kLongestSceneKey = 50;
constexpr size_t kLongestSceneValue = 200;
constexpr size_t kMostScenes = 15;

size_t characters(const std::string& utf8) {
    return static_cast<size_t>(std::ranges::count_if(
        utf8, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

/// ASCII letters and digits, one at least.
bool isSceneKey(const std::string& key) {
    return !key.empty() && std::ranges::all_of(key, [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
}

}  // namespace

CvrCrashData::CvrCrashData() = default;

CvrCrashData& CvrCrashData::sharedInstance() {
    static vorla::NoDestructor<CvrCrashData> instance;
    return *instance;
}

void CvrCrashData::appendSessionEvent(const std::string& event) {
    const size_t length = characters(event);
    if (length == 0 || length > kLongestEvent) return;
    const std::lock_guard lock(mutex_);
    events_.push_back(event);
    if (events_.size() > kMostEvents) events_.erase(events_.begin());
    sessionState().events.publish(events_);
}

void CvrCrashData::addUserMapData(const std::string& key, const std::string& val) {
    const std::lock_guard lock(mutex_);
    userMaps_[key] = val;
    sessionState().userMaps.publish(userMaps_);
}

void CvrCrashData::setScene(uint64_t scene) {
    putScene("C01", std::to_string(scene));
}

void CvrCrashData::setSdkScene(uint64_t scene) {
    putScene("C02", std::to_string(scene));
}

void CvrCrashData::addSceneValue(const std::string& value, const std::string& forKey) {
    if (characters(forKey) > kLongestSceneKey || characters(value) > kLongestSceneValue) {
        CvrLogWarn("<WARN> CVR: string out of limit length for [%s: %s@]", forKey.c_str(),
                   value.c_str());
        return;
    }
    if (!isSceneKey(forKey)) return;
    const vorla::LogHold hold;
    const std::lock_guard lock(mutex_);
    if (sceneData_.size() >= kMostScenes) {
        CvrLogWarn("<WARN> CVR: scene key-value data size[%zu] out of limit count [15]",
                   sceneData_.size());
        return;
    }
    sceneData_["C03_" + forKey] = value;
    sessionState().sceneData.publish(sceneData_);
}

void CvrCrashData::addSdkSceneValue(const std::string& value, const std::string& forKey) {
    if (isSceneKey(forKey)) putScene("C04_" + forKey, value);
}

std::string CvrCrashData::type() {
    const auto crash = vorla::crash::presentCrash();
    return crash.type.empty() ? vorla::crash::latestCaught().type : std::string(crash.type);
}

std::string CvrCrashData::error() {
    const auto crash = vorla::crash::presentCrash();
    return crash.type.empty() ? vorla::crash::latestCaught().error : std::string(crash.error);
}

std::string CvrCrashData::crashlog() {
    return std::string(vorla::crash::presentCrash().log);
}

std::string CvrCrashData::crashStack() {
    const auto crash = vorla::crash::presentCrash();
    return crash.type.empty() ? vorla::crash::latestCaught().stack : std::string(crash.callStack);
}

void CvrCrashData::putScene(const std::string& key, const std::string& value) {
    const std::lock_guard lock(mutex_);
    sceneData_[key] = value;
    sessionState().sceneData.publish(sceneData_);
}
