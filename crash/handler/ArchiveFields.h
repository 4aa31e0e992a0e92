#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "crash/archive/ArchiveReader.h"
#include "crash/archive/ArchiveWriter.h"
#include "crash/handler/FaultFolder.h"

// Reading and writing maps of the store's files piece by piece. All of it may run after a fault.

namespace vorla::crash {

/// The attachments' type.
inline constexpr int64_t textAttachment = 11;

inline std::string_view asText(std::span<const uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Calls `visit(key, value bytes)` for the entries of a map; false when it is not sound.
template <typename Visit>
bool eachEntry(std::span<const uint8_t> map, Visit visit) {
    if (!ArchiveReader::isWhole(map, ArchiveReader::Kind::Map)) return false;
    ArchiveReader reader(map);
    reader.next();
    for (;;) {
        const auto key = reader.next();
        if (key.kind == ArchiveReader::Kind::End) return true;
        const auto value = reader.takeValue();
        if (key.kind != ArchiveReader::Kind::Text || !value) return false;
        visit(key.text(), *value);
    }
}

inline ArchiveReader::Item only(std::span<const uint8_t> value) {
    return ArchiveReader(value).next();
}

inline void field(ArchiveWriter& writer, std::string_view name, std::string_view value) {
    writer.text(name);
    writer.text(value);
}

inline void number(ArchiveWriter& writer, std::string_view name, int64_t value) {
    writer.text(name);
    writer.integer(value);
}

/// Copies the entries of a map but those that `isReplaced` names, into a map that the caller ends.
template <typename IsReplaced>
bool copyMap(std::span<const uint8_t> map, NewFile& file, IsReplaced isReplaced) {
    ArchiveWriter writer(NewFile::sink, &file);
    writer.beginMap();
    return eachEntry(map, [&](std::string_view key, std::span<const uint8_t> value) {
        if (isReplaced(key, value)) return;
        writer.text(key);
        file.write(value.data(), value.size());
    });
}

}  // namespace vorla::crash
