#pragma once

#include <memory>

#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"
#include "NEX/NEX/VLSTStatComm.h"
#include "NEX/NEX/VLSTStatProtocol_Function.h"

/// The statistics of one upload.
class VLSTStat : public PakObjectV2 {
    PAK_OBJECT_V2(VLSTStat, "ZB.STStat")
    PAK_FIELD(std::shared_ptr<VLSTStatComm>, pakv2_p_0_r_stComm, stComm)
    PAK_FIELD(PakArray, pakv2_p_21_o_vProtocols_Function__b0x9i_VOVLSTStatProtocol_Function,
              vProtocols_Function)

    /// Filled with the facts about this machine and the counters as they stand.
    static std::shared_ptr<VLSTStat> ozuhdInstance();
};
