#include "crash/facts/CvrBundleUtil.h"

#include <mutex>

#include "crash/facts/CvrDeviceUtil.h"
#include "crash/facts/CvrModelBase.h"
#include "platform/base/Bundle.h"

namespace {

constexpr const char* accountUdid = "cvr.openuuid";
constexpr const char* serviceUdid = "cvr.service";
constexpr const char* accountTavim = "cvr.tavim";
constexpr const char* serviceTavim = "ostara.mibis.analytics";

std::string info(const char* key) {
    return vorla::Bundle::framework().infoString(key);
}

}  // namespace

std::string CvrBundleUtil::getBundleId() {
    return vorla::HostIdentity::fileName();
}
std::string CvrBundleUtil::getBundleName() {
    return vorla::HostIdentity::displayName();
}
std::string CvrBundleUtil::getBundleVersion() {
    return info("CFBundleVersion");
}
std::string CvrBundleUtil::getBundleShortVer() {
    return info("CFBundleShortVersionString");
}
std::string CvrBundleUtil::getBundleExe() {
    return CvrDeviceUtil::getProcessName();
}
std::string CvrBundleUtil::getSBKCIBuildUUID() {
    return info("com.ostara.sbk.uuid");
}

std::string CvrBundleUtil::createOpenUdid() {
    return CvrDeviceUtil::generateUUID();
}

std::string CvrBundleUtil::getAnaOpenUdid(CvrModelBase& model, CvrKeyStore& keys) {
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    if (std::string known = model.textForKey(accountUdid); !known.empty()) return known;
    std::string identifier =
        keys.getPasswordForUsername(accountUdid, serviceUdid).value_or(std::string());
    if (identifier.empty()) {
        identifier = createOpenUdid();
        keys.storeUsername(accountUdid, identifier, serviceUdid, true);
    }
    model.persistKey(accountUdid, identifier);
    return identifier;
}

std::string CvrBundleUtil::getTavim(CvrModelBase& model, CvrKeyStore& keys) {
    if (std::string known = model.textForKey("ana_tavim"); !known.empty()) return known;
    return keys.getPasswordForUsername(accountTavim, serviceTavim).value_or(std::string());
}
