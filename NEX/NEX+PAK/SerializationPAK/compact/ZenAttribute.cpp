#include "NEX/NEX+PAK/SerializationPAK/compact/ZenAttribute.h"

#include <stdexcept>

namespace analyticsnex {

PakData ZenAttribute::toBytes() {
    stream_.clear();
    stream_.write(attributes_, 0);
    const auto bytes = stream_.bytes();
    return {bytes.begin(), bytes.end()};
}

void ZenAttribute::fromBytes(std::span<const uint8_t> bytes) {
    analyticspak::PakInputStream stream(bytes);
    stream.read(attributes_, 0);
}

const PakData& ZenAttribute::bytesOf(const std::string& name, const char* structName) const {
    const auto entry = attributes_.find(name);
    if (entry == attributes_.end())
        throw std::runtime_error("ZenAttribute not found key:" + name + ",type:" + structName);
    const Types& types = entry->second;
    if (const auto found = types.find(structName); found != types.end()) return found->second;
    throw std::runtime_error("ZenAttribute type match fail,key:" + name + ",type:" + structName +
                             "," + "may be:" + (types.empty() ? "" : types.begin()->first));
}

}  // namespace analyticsnex
