#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"

const PakPropsDescription& PakObjectV2::pakPropsDescription() const {
    return dynamicClass().pakPropsDescription();
}

const PakObjectPtr& PakObjectV2::pakRefObject() const {
    return dynamicClass().pakRefObject();
}

void PakObjectV2::__pack(PakOutputStream& stream) {
    const PakClass& described = dynamicClass();
    const PakObject* const reference = described.pakRefObject().get();
    for (const auto& [tag, info] : described.pakPropsDescription())
        info.field->pack(*this, stream, info, reference);
}

void PakObjectV2::__unpack(PakInputStream& stream) {
    for (const auto& [tag, info] : pakPropsDescription()) info.field->unpack(*this, stream, info);
}
