#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"

void PakObjectV2::__pack(PakOutputStream& stream) {
    const PakObject* const reference = pakRefObject().get();
    for (const auto& [tag, info] : pakPropsDescription())
        info.field->pack(*this, stream, info, reference);
}

void PakObjectV2::__unpack(PakInputStream& stream) {
    for (const auto& [tag, info] : pakPropsDescription()) info.field->unpack(*this, stream, info);
}
