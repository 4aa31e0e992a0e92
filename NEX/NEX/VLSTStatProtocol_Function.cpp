#include "NEX/NEX/VLSTStatProtocol_Function.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "NEX/NEX/VLStatisticManager.h"

namespace {

constexpr uint32_t functionProtocol = 8130;

}  // namespace

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
