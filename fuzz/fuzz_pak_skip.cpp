// Passing over fields: by the compact reader, and by the trusting reader behind the known fields of
// a structure.

#include <cstddef>
#include <cstdio>

#include "NEX/NEX+PAK/SerializationPAK/PakInputStream.h"
#include "fuzz/FuzzStructures.h"

namespace {

class KnowsNothing : public PakObject {
    PAK_OBJECT(KnowsNothing, PakObject, nullptr)
    void __unpack(PakInputStream& /*stream*/) override {}
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    return std::freopen("/dev/null", "w", stdout) ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    using namespace vorla::fuzz;
    throwOnFailedChecks();
    const PakData copy(bytes, bytes + size);
    analyticspak::PakInputStream compact(copy);
    succeeds([&] { compact.skipField(); });
    analyticspak::PakInputStream seeking(copy);
    if (seeking.skipToTag(size > 0 ? bytes[0] : 0)) require(seeking.reader().left() > 0);

    PakInputStream strict{std::span<const uint8_t>(copy)};
    if (succeeds([&] { strict.readObject(0, true, KnowsNothing::pakClass()); }))
        require(strict.cursor() <= strict.streamSize());
    return 0;
}
