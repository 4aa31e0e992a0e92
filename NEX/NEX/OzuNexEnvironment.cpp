#include "NEX/NEX/OzuNexEnvironment.h"

#include "NEX/NEX/VLNEXUtilities.h"
#include "NEX/NEX/VLStatisticManager.h"
#include "platform/base/raii.h"

namespace {

std::string madeUserAgent() {
    const std::string shortVersion = VLNEXUtilities::bundleShortVersion();
    const std::string supplyID = VLNEXUtilities::supplyID();
    const std::string system = VLNEXUtilities::operatingSystem();
    return "MACVL" + shortVersion + "_GA/" + shortVersion + VLNEXUtilities::buildVersion() +
           "&WebKit/10&MAC&NA&NA&" + (supplyID.empty() ? "0" : supplyID) + "&9810&" +
           (system.empty() ? "NA" : system) + "&V3";
}

}  // namespace

std::optional<std::string> OzuNexEnvironment::zGuid() {
    return VLNEXUtilities::UUID(VLStatisticManager::statFolderPath());
}

std::string OzuNexEnvironment::zUA3() {
    static vorla::NoDestructor<std::string> userAgent(madeUserAgent());
    return *userAgent;
}
