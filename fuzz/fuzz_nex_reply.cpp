// A reply as a server may send it, from the bytes of the body to the return code: read or refused.

#include <cstddef>
#include <cstdint>
#include <exception>

#include "NEX/NEX+PAK/RMIModelNEX/NexAgent.h"
#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/ZenAttributeValues.h"
#include "platform/base/VLLog.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static const bool quiet = (vorla::setLogHandler([](std::string_view) {}), true);
    (void)quiet;
    PakData body(bytes, bytes + size);
    // Most inputs get the right length, or hardly any would come further.
    if (size >= 4 && bytes[0] % 4 != 0) pack_32(body.data(), static_cast<int32_t>(size));
    static const NexAgent agent("fuzz");
    const auto packet = agent.handleResponseData(body, {}, nullptr);
    if (!packet) return 0;
    try {
        const vorla::PakFailuresRaise untrusted;
        (void)ZenAttributeValues::intValueWithName("", packet->attributes());
    } catch (const std::exception&) {
        return 0;
    }
    return 0;
}
