#pragma once

#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"

class VLStatisticManager;

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
