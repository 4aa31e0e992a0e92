#pragma once

#include <map>
#include <string>

#include "NEX/NEX+PAK/SerializationPAK/compact/PakInputStream.h"
#include "NEX/NEX+PAK/SerializationPAK/compact/PakOutputStream.h"

namespace analyticsnex {

/// The attributes of a packet: from name to the full name of a structure to its bytes. A record
/// says its structure's full name as `static constexpr const char* structName`.
class ZenAttribute {
 public:
    using Types = std::map<std::string, PakData>;

    /// Replaces what the name had.
    template <typename Record>
    void put(const std::string& name, const Record& record) {
        stream_.clear();
        stream_.write(record, 0);
        const auto bytes = stream_.bytes();
        attributes_[name] = Types{{Record::structName, PakData(bytes.begin(), bytes.end())}};
    }

    /// Raises std::runtime_error when there is no such name or another structure was stored under
    /// it, and PakDecodeException when its bytes are none of the structure.
    template <typename Record>
    void get(const std::string& name, Record& record) const {
        analyticspak::PakInputStream stream(bytesOf(name, Record::structName));
        stream.read(record, 0);
    }

    /// All attributes as one map at tag 0, the form in which a packet carries them.
    [[nodiscard]] PakData toBytes();
    void fromBytes(std::span<const uint8_t> bytes);

 private:
    [[nodiscard]] const PakData& bytesOf(const std::string& name, const char* structName) const;

    std::map<std::string, Types> attributes_;
    /// Kept for its memory.
    analyticspak::PakOutputStream stream_;
};

}  // namespace analyticsnex
