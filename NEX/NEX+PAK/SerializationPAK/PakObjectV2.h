#pragma once

#include "NEX/NEX+PAK/SerializationPAK/PakObject.h"

/// The base of the structures that are declared field by field and need no serialization code: the
/// storage name in each PAK_FIELD line is the one place that says tag, whether the field is
/// required, its name and what a container holds. Fields go out in ascending order of their tags.
///
///     class VLSTStatProtocol_Function : public PakObjectV2 {
///         PAK_OBJECT_V2(VLSTStatProtocol_Function, "ZB.STStatProtocol_Function")
///         PAK_FIELD(uint32_t, pakv2_p_1_r_iKey, iKey)
///         PAK_FIELD(std::string, pakv2_p_5_o_sValueI, sValueI)
///     };
///
/// A class writes and reads only the fields that it declares itself, not those of its bases. Wrong
/// declarations (see PakPair and PakClass) end the process when the class is first used.
class PakObjectV2 : public PakObject {
    PAK_OBJECT(PakObjectV2, PakObject, nullptr)

    /// What the storage names of the object's class say, by tag.
    [[nodiscard]] const PakPropsDescription& pakPropsDescription() const;
    /// The one reference instance of the object's class.
    [[nodiscard]] const PakObjectPtr& pakRefObject() const;

    void __pack(PakOutputStream& stream) override;
    void __unpack(PakInputStream& stream) override;
};

#define PAK_OBJECT_V2(Class, typeName) PAK_OBJECT(Class, PakObjectV2, typeName)
