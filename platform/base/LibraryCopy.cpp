#include "platform/base/LibraryCopy.h"

#include "platform/base/VLLog.h"

namespace vorla {

bool isServingCopy(std::atomic<const LibraryCopy*>& marker, const LibraryCopy& self) {
    const LibraryCopy* serving = nullptr;
    if (marker.compare_exchange_strong(serving, &self) || serving == &self) return true;
    static std::atomic_flag told;
    if (!told.test_and_set())
        VLLogError("%s %s is refused: another copy, version %s, serves this process", self.name,
                   self.version, serving->version);
    return false;
}

bool isServingServices() {
    static constexpr LibraryCopy self = {"libVorlaServices", VORLA_VERSION};
    return isServingCopy(VLServicesInProcess, self);
}

}  // namespace vorla
