// A dictionary file with anything in it: read whole and written back the same, or refused.

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "platform/base/VLLog.h"
#include "platform/base/raii.h"
#include "settings/plist.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static const bool quiet = (vorla::setLogHandler([](std::string_view) {}), true);
    (void)quiet;
    const vorla::UniqueFd file(::memfd_create("fuzz", MFD_CLOEXEC));
    if (!file || ::write(file.get(), bytes, size) != static_cast<ssize_t>(size)) std::abort();
    const auto read = readFromPlistFile("/proc/self/fd/" + std::to_string(file.get()));
    if (!read) return 0;
    const std::vector<uint8_t> written = nlohmann::json::to_cbor(*read);
    const nlohmann::json again = nlohmann::json::from_cbor(written, true, false);
    if (nlohmann::json::to_cbor(again) != written) std::abort();
    return 0;
}
