#include "NEX/NEX+PAK/SerializationPAK/PakObjectV2.h"

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"

const PakPropsDescription& PakObjectV2::pakPropsDescription() const {
    return dynamicClass().pakPropsDescription();
}

const PakObjectPtr& PakObjectV2::pakRefObject() const {
    return dynamicClass().pakRefObject();
}

void PakObjectV2::__pack(PakOutputStream& stream) {
    const PakClass& described = dynamicClass();
    const PakObject* const reference = described.pakRefObject().get();
    vorla::PakPlace place(described.name());
    for (const auto& [tag, info] : described.pakPropsDescription()) {
        place.setField(info.field->storageName());
        info.field->pack(*this, stream, info, reference);
    }
}

void PakObjectV2::__unpack(PakInputStream& stream) {
    const PakClass& described = dynamicClass();
    vorla::PakPlace place(described.name());
    for (const auto& [tag, info] : described.pakPropsDescription()) {
        place.setField(info.field->storageName());
        info.field->unpack(*this, stream, info);
    }
}
