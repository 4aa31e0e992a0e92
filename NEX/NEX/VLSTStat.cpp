#include "NEX/NEX/VLSTStat.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "NEX/NEX/VLNEXUtilities.h"
#include "NEX/NEX/VLStatisticManager.h"

namespace {

constexpr uint32_t functionProtocol = 8130;

}  // namespace

std::shared_ptr<VLSTStatComm> VLSTStatComm::ozuhdInstance() {
    auto comm = object();
    comm->setPak_sGuid(VLNEXUtilities::UUID(VLStatisticManager::statFolderPath()).value_or(""));
    comm->setPak_iClientVersion(VLNEXUtilities::clientVersion());
    const std::string supplyID = VLNEXUtilities::supplyID();
    comm->setPak_iSupplyID(static_cast<uint32_t>(std::strtoll(supplyID.c_str(), nullptr, 10)));
    comm->setPak_sOsVersion(VLNEXUtilities::operatingSystemVersion());
    comm->setPak_iOsLanguage(VLNEXUtilities::operatingSystemLanguage() == "zh-Hans" ? 1 : 0);
    comm->setPak_iOsDigit(VLNEXUtilities::operatingSystemDigit());
    return comm;
}

PakArray VLSTStatProtocol_Function::ozuhdInstance(VLStatisticManager& manager) {
    PakArray entries;
    const nlohmann::json info = manager.statInfo();
    for (const auto& [key, value] : info.items()) {
        const auto entry = object();
        entry->setPak_iProtocol(functionProtocol);
        entry->setPak_iKey(static_cast<uint32_t>(std::strtoll(key.c_str(), nullptr, 10)));
        if (const auto number = VLStatisticManager::unsignedIntegerValue(value))
            entry->setPak_iValueI(static_cast<uint32_t>(*number));
        else if (value.is_string())
            entry->setPak_sValueI(value.get<std::string>());
        entries.emplace_back(entry);
    }
    return entries;
}

std::shared_ptr<VLSTStat> VLSTStat::ozuhdInstance() {
    auto stat = object();
    stat->setPak_stComm(VLSTStatComm::ozuhdInstance());
    stat->setPak_vProtocols_Function(
        VLSTStatProtocol_Function::ozuhdInstance(VLStatisticManager::defaultStatisticManager()));
    return stat;
}
