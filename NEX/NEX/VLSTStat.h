#pragma once

#include <memory>
#include <string>

#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"

class VLStatisticManager;

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

/// One counter, or one fact, as it is sent.
class VLSTStatProtocol_Function : public PakObjectV2 {
    PAK_OBJECT_V2(VLSTStatProtocol_Function, "ZB.STStatProtocol_Function")
    PAK_FIELD(uint32_t, pakv2_p_0_r_iProtocol, iProtocol, 0)
    PAK_FIELD(uint32_t, pakv2_p_1_r_iKey, iKey, 0)
    PAK_FIELD(uint32_t, pakv2_p_2_o_iValueI, iValueI, 0)
    PAK_FIELD(uint32_t, pakv2_p_3_o_iValueII, iValueII, 0)
    PAK_FIELD(uint32_t, pakv2_p_4_o_iValueIII, iValueIII, 0)
    PAK_FIELD(std::string, pakv2_p_5_o_sValueI, sValueI)
    PAK_FIELD(std::string, pakv2_p_6_o_sValueII, sValueII)
    PAK_FIELD(std::string, pakv2_p_7_o_sValueIII, sValueIII)

    /// One for each entry of the manager's `statInfo`, its key as a number and its value as a
    /// number or a text; a value of another kind leaves both empty. Numbers are cut to 32 bits.
    static PakArray ozuhdInstance(VLStatisticManager& manager);
};

/// The statistics of one upload.
class VLSTStat : public PakObjectV2 {
    PAK_OBJECT_V2(VLSTStat, "ZB.STStat")
    PAK_FIELD(std::shared_ptr<VLSTStatComm>, pakv2_p_0_r_stComm, stComm)
    PAK_FIELD(PakArray, pakv2_p_21_o_vProtocols_Function__b0x9i_VOVLSTStatProtocol_Function,
              vProtocols_Function)

    /// Filled with the facts about this machine and the counters as they stand.
    static std::shared_ptr<VLSTStat> ozuhdInstance();
};
