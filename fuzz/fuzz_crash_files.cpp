// What a store's folder may hold, and what the server may answer: each reader takes it or refuses
// it, and what was read comes back the same when it is written and read once more.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <variant>

#include "crash/records/CvrCrashMetaData.h"
#include "crash/records/CvrExpObj.h"
#include "crash/records/CvrLocalStrategy.h"
#include "crash/records/CvrSummaryInfo.h"
#include "crash/store/CrashIndex.h"

namespace {

template <typename T>
void tryAs(std::span<const uint8_t> bytes) {
    const auto value = vorla::valueFromData<T>(bytes);
    if (!value) return;
    const std::string written = vorla::archivedData(*value);
    const auto again = vorla::valueFromData<T>(vorla::asBytes(written));
    if (!again || vorla::archivedData(*again) != written) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const std::span input(bytes, size);
    tryAs<CvrExpObj>(input);
    tryAs<CvrCrashMetaData>(input);
    tryAs<CvrSummaryInfo>(input);
    tryAs<CvrLocalStrategy>(input);
    tryAs<std::map<std::string, std::vector<uint8_t>>>(input);
    tryAs<std::map<std::string, std::variant<std::string, int64_t, bool>>>(input);
    tryAs<std::vector<std::vector<uint8_t>>>(input);
    (void)vorla::crash_index::isCrashFileName({reinterpret_cast<const char*>(bytes), size});
    return 0;
}
