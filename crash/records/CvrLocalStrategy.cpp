#include "crash/records/CvrLocalStrategy.h"

#include <exception>

#include "crash/CvrLog.h"
#include "crash/records/CvrWire.h"

namespace {

constexpr size_t shortestKey = 8;

}  // namespace

bool CvrLocalStrategy::isEqual(const CvrLocalStrategy& other) const {
    return enable == other.enable && userInfoEnable == other.userInfoEnable &&
           queryEnable == other.queryEnable && url == other.url && expUrl == other.expUrl &&
           encKey == other.encKey && encPubKey == other.encPubKey && valueMap == other.valueMap;
}

std::string CvrLocalStrategy::debugDescription() const {
    return std::string("Strategy: Crash Report Enable:") + (enable ? "YES" : "NO");
}

bool CvrLocalStrategy::initLocalObjWithNexBuffer(std::span<const uint8_t> buffer) {
    cvr::CvrStrategy strategy;
    try {
        analyticspak::PakInputStream stream(buffer);
        strategy.readFrom(stream);
    } catch (const std::exception& fault) {
        CvrLogError("<ERROR> CVR: strategy processing occur error: %s", fault.what());
        return false;
    }
    enable = strategy.enable != 0;
    userInfoEnable = strategy.userInfoEnable != 0;
    queryEnable = strategy.queryEnable != 0;
    url = std::move(strategy.url);
    expUrl = std::move(strategy.expUrl);
    if (strategy.security.encKey.size() >= shortestKey)
        encKey = std::move(strategy.security.encKey);
    if (strategy.security.encPubKey.size() >= shortestKey)
        encPubKey = std::move(strategy.security.encPubKey);
    valueMap = std::move(strategy.valueMap);
    return true;
}
