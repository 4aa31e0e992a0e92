#pragma once

#include <memory>

#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"

/// Who sends statistics: machine, versions and system. Fields that nothing here says more about
/// stay as they are made.
class VLSTStatComm : public PakObjectV2 {
    PAK_OBJECT_V2(VLSTStatComm, "ZB.STStatComm")
    PAK_FIELD(std::string, pakv2_p_0_r_sGuid, sGuid)
    PAK_FIELD(std::string, pakv2_p_1_r_sTGuid, sTGuid)
    PAK_FIELD(int64_t, pakv2_p_2_r_iClientVersion, iClientVersion, 0)
    PAK_FIELD(std::string, pakv2_p_3_o_sUin, sUin)
    PAK_FIELD(uint32_t, pakv2_p_4_r_iSupplyID, iSupplyID, 0)
    PAK_FIELD(int64_t, pakv2_p_5_r_iUniOperCode, iUniOperCode, 0)
    PAK_FIELD(std::string, pakv2_p_6_r_sOsVersion, sOsVersion)
    /// 1 for simplified Chinese, 0 for all others.
    PAK_FIELD(uint32_t, pakv2_p_7_o_iOsLanguage, iOsLanguage, 0)
    PAK_FIELD(uint16_t, pakv2_p_8_o_iOsDigit, iOsDigit, 32)
    PAK_FIELD(std::string, pakv2_p_9_o_sKernelVersion, sKernelVersion)
    PAK_FIELD(std::string, pakv2_p_10_o_sGJGuid, sGJGuid)
    PAK_FIELD(std::string, pakv2_p_11_o_sReserved, sReserved)

    /// Filled with the facts about this machine.
    static std::shared_ptr<VLSTStatComm> ozuhdInstance();
};
