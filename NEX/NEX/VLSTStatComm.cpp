#include "NEX/NEX/VLSTStatComm.h"

#include <cstdlib>

#include "NEX/NEX/VLNEXUtilities.h"

std::shared_ptr<VLSTStatComm> VLSTStatComm::ozuhdInstance() {
    auto comm = object();
    comm->setPak_sGuid(VLNEXUtilities::UUID().value_or(""));
    comm->setPak_iClientVersion(VLNEXUtilities::clientVersion());
    const std::string supplyID = VLNEXUtilities::supplyID();
    comm->setPak_iSupplyID(static_cast<uint32_t>(std::strtoll(supplyID.c_str(), nullptr, 10)));
    comm->setPak_sOsVersion(VLNEXUtilities::operatingSystemVersion());
    comm->setPak_iOsLanguage(VLNEXUtilities::operatingSystemLanguage() == "zh-Hans" ? 1 : 0);
    comm->setPak_iOsDigit(VLNEXUtilities::operatingSystemDigit());
    return comm;
}
