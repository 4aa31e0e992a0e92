#pragma once

#include <concepts>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "crash/archive/ArchiveReader.h"
#include "crash/archive/ArchiveWriter.h"

namespace vorla {

/// A record of named fields. Its one list of them serves writing and reading:
///
///     template <typename Self, typename Visit>
///     static void eachField(Self& self, Visit&& visit) {
///         visit("fileName", self.fileName);
///     }
///
/// Fields may be integers, booleans, strings, byte strings, optional values, records, and lists and
/// maps (from string) of those.
template <typename T>
concept ArchivedRecord = requires(T& record) {
    T::eachField(record, [](const char*, auto&) {});
};

/// More elements than a list or map of ours ever has. A limit, for an element that takes two bytes
/// in a file takes hundreds in memory.
inline constexpr size_t mostArchivedElements = 65536;

template <ArchivedRecord T>
void archiveRecord(const T& record, ArchiveWriter& writer);
template <ArchivedRecord T>
bool readRecord(ArchiveReader& reader, T& record);

inline void archiveValue(std::integral auto value, ArchiveWriter& writer) {
    if constexpr (std::same_as<decltype(value), bool>)
        writer.boolean(value);
    else
        writer.integer(static_cast<int64_t>(value));
}
inline void archiveValue(const std::string& value, ArchiveWriter& writer) {
    writer.text(value);
}
inline void archiveValue(const std::vector<uint8_t>& value, ArchiveWriter& writer) {
    writer.bytes(value);
}
template <typename T>
void archiveValue(const std::optional<T>& value, ArchiveWriter& writer) {
    archiveValue(*value, writer);
}
template <ArchivedRecord T>
void archiveValue(const T& value, ArchiveWriter& writer) {
    archiveRecord(value, writer);
}
template <typename T>
void archiveValue(const std::vector<T>& value, ArchiveWriter& writer) {
    writer.beginList();
    for (const T& element : value) archiveValue(element, writer);
    writer.end();
}
/// A value of one of several types, each of another kind in the archive.
template <typename... T>
void archiveValue(const std::variant<T...>& value, ArchiveWriter& writer) {
    std::visit([&](const auto& present) { archiveValue(present, writer); }, value);
}
template <typename T>
void archiveValue(const std::map<std::string, T>& value, ArchiveWriter& writer) {
    writer.beginMap();
    for (const auto& [key, element] : value) {
        writer.text(key);
        archiveValue(element, writer);
    }
    writer.end();
}

inline bool readValue(ArchiveReader& reader, bool& value) {
    const auto item = reader.next();
    value = item.number != 0;
    return item.kind == ArchiveReader::Kind::Boolean;
}
template <std::integral T>
bool readValue(ArchiveReader& reader, T& value) {
    const auto item = reader.next();
    if (item.kind != ArchiveReader::Kind::Integer || !std::in_range<T>(item.number)) return false;
    value = static_cast<T>(item.number);
    return true;
}
inline bool readValue(ArchiveReader& reader, std::string& value) {
    const auto item = reader.next();
    if (item.kind != ArchiveReader::Kind::Text) return false;
    value = item.text();
    return true;
}
inline bool readValue(ArchiveReader& reader, std::vector<uint8_t>& value) {
    const auto item = reader.next();
    if (item.kind != ArchiveReader::Kind::Bytes) return false;
    value.assign(item.bytes.begin(), item.bytes.end());
    return true;
}
template <typename T>
bool readValue(ArchiveReader& reader, std::optional<T>& value) {
    return readValue(reader, value.emplace());
}
template <ArchivedRecord T>
bool readValue(ArchiveReader& reader, T& value) {
    value = {};
    return readRecord(reader, value);
}

/// Calls `read` in front of each element of the list, or key of the map, that comes next, until it
/// refuses one.
template <typename Read>
bool readElements(ArchiveReader& reader, ArchiveReader::Kind kind, Read read) {
    if (reader.next().kind != kind) return false;
    for (size_t count = 0; count < mostArchivedElements; ++count) {
        ArchiveReader ahead = reader;
        if (ahead.next().kind == ArchiveReader::Kind::End) {
            reader = ahead;
            return true;
        }
        if (!read()) return false;
    }
    return false;
}

template <typename T>
bool readValue(ArchiveReader& reader, std::vector<T>& value) {
    value.clear();
    return readElements(reader, ArchiveReader::Kind::List,
                        [&] { return readValue(reader, value.emplace_back()); });
}
template <typename... T>
bool readValue(ArchiveReader& reader, std::variant<T...>& value) {
    const ArchiveReader start = reader;
    const auto readAs = [&]<typename One>(One one) {
        reader = start;
        if (!readValue(reader, one)) return false;
        value = std::move(one);
        return true;
    };
    return (readAs(T{}) || ...);
}
template <typename T>
bool readValue(ArchiveReader& reader, std::map<std::string, T>& value) {
    value.clear();
    return readElements(reader, ArchiveReader::Kind::Map, [&] {
        std::string key;
        return readValue(reader, key) && readValue(reader, value[key]);
    });
}

/// Whether a field is left out: an empty string, list or map reads as an absent one.
template <typename T>
bool isAbsent(const T& value) {
    if constexpr (requires { value.empty(); })
        return value.empty();
    else if constexpr (requires { value.has_value(); })
        return !value.has_value();
    else
        return false;
}

template <ArchivedRecord T>
void archiveRecord(const T& record, ArchiveWriter& writer) {
    writer.beginMap();
    T::eachField(record, [&](const char* name, const auto& value) {
        if (isAbsent(value)) return;
        writer.text(name);
        archiveValue(value, writer);
    });
    writer.end();
}

template <ArchivedRecord T>
bool readRecord(ArchiveReader& reader, T& record) {
    return readElements(reader, ArchiveReader::Kind::Map, [&] {
        const auto key = reader.next();
        if (key.kind != ArchiveReader::Kind::Text) return false;
        bool known = false;
        bool read = true;
        T::eachField(record, [&](const char* name, auto& value) {
            if (known || key.text() != name) return;
            known = true;
            read = readValue(reader, value);
        });
        return known ? read : reader.takeValue().has_value();
    });
}

/// A sink that appends to a std::string.
inline void appendToString(void* context, const void* bytes, size_t count) {
    static_cast<std::string*>(context)->append(static_cast<const char*>(bytes), count);
}

/// A record, list or map as the content of a file.
template <typename T>
std::string archivedData(const T& value) {
    std::string data;
    ArchiveWriter writer(&appendToString, &data);
    archiveValue(value, writer);
    return data;
}

inline std::span<const uint8_t> asBytes(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

/// What the bytes hold, or none when they hold no such thing from the first to the last.
template <typename T>
std::optional<T> valueFromData(std::span<const uint8_t> data) {
    ArchiveReader reader(data);
    std::optional<T> value(std::in_place);
    if (!readValue(reader, *value) || reader.position() != data.size()) return std::nullopt;
    return value;
}

}  // namespace vorla
