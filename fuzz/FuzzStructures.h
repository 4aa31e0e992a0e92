#pragma once

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/PakOutputStream.h"

namespace vorla::fuzz {

/// A declared structure with a field of each kind, and others like itself inside.
class FuzzNode : public PakObjectV2 {
    PAK_OBJECT_V2(FuzzNode, "FUZZ.Node")
    PAK_FIELD(int8_t, pakv2_p_0_o_cState, cState)
    PAK_FIELD(int64_t, pakv2_p_1_r_lTime, lTime)
    PAK_FIELD(float, pakv2_p_2_o_fWind, fWind)
    PAK_FIELD(double, pakv2_p_3_o_dHeight, dHeight)
    PAK_FIELD(std::optional<std::string>, pakv2_p_4_o_sName, sName)
    PAK_FIELD(std::optional<PakData>, pakv2_p_5_o_vPicture, vPicture)
    PAK_FIELD(PakArray, pakv2_p_6_o_vWaves__b0x9i_VONSNumber, vWaves)
    PAK_FIELD(PakArray, pakv2_p_7_o_vNotes__b0x9i_VVONSString, vNotes)
    PAK_FIELD(PakDictionary, pakv2_p_15_o_mTags__b0x9i_M09ONSStringM09ONSNumberONSData, mTags)
    PAK_FIELD(std::shared_ptr<FuzzNode>, pakv2_p_16_o_stNext, stNext)
    PAK_FIELD(PakArray, pakv2_p_17_o_vNear__b0x9i_VOFuzzNode, vNear)
};

/// What a check that would end the process throws instead, to go on with the next input.
struct CheckFailed {};

inline void throwOnFailedChecks() {
    setPakFailureHook([](const char*) { throw CheckFailed(); });
}

/// Runs the work; a failed check or a raised exception is a good outcome.
template <typename Work>
bool succeeds(Work work) {
    try {
        work();
        return true;
    } catch (const CheckFailed&) {
    } catch (const std::runtime_error&) {
    }
    return false;
}

/// Ends the run: something that must hold does not.
inline void require(bool holds) {
    if (!holds) __builtin_trap();
}

}  // namespace vorla::fuzz
