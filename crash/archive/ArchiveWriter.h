#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace vorla {

// The form of everything that the crash reporter keeps in files: a subset of CBOR (RFC 8949) that
// can be written without knowing what follows, copied and extended without being understood, and
// read without memory of its own.
//
//   file    := value                       a map or a list
//   value   := integer | boolean | text | bytes | map | list
//   integer := major type 0 or 1, in the shortest form, within signed 64 bits
//   boolean := F4 (false) | F5 (true)
//   text    := major type 3 with its length (UTF-8, or whatever a crashed process held)
//   bytes   := major type 2 with its length
//   map     := BF (text value)* FF         of two entries with one key the later one counts
//   list    := 9F value* FF
//
// A record is a map from its fields' names to their values; a field that has its initial value may
// be left out, and one that the reader does not know is passed over. So a dictionary in a file is
// changed by taking its bytes but the last one, the new entries, and FF.
//
//   .cvrios.plist        map from key to text, integer or boolean
//   .crash_meta.data     map from a crash's hash to bytes: the record CvrCrashMetaData
//   .crash_TIME.data     the record CvrExpObj
//   .user_info.data      list of bytes: records CvrSummaryInfo
//   .new_strategy.data   the record CvrLocalStrategy

/// Writes such values to a sink, one after the other. May run after a fault: takes no memory and no
/// lock. Nesting and the order of keys and values are the caller's business.
class ArchiveWriter {
 public:
    /// Takes over the next bytes before it returns.
    using Sink = void (*)(void* context, const void* bytes, size_t count);

    ArchiveWriter(Sink sink, void* context) : sink_(sink), context_(context) {}

    void beginMap() { byte(0xBF); }
    void beginList() { byte(0x9F); }
    /// Ends the innermost map or list.
    void end() { byte(0xFF); }

    void integer(int64_t value);
    void boolean(bool value) { byte(value ? 0xF5 : 0xF4); }
    void text(std::string_view value);
    void bytes(std::span<const uint8_t> value);

    /// The start of a text or byte string of `length` bytes, which the caller hands to the sink in
    /// whatever pieces.
    void textHead(uint64_t length) { head(3, length); }
    void bytesHead(uint64_t length) { head(2, length); }

 private:
    void byte(uint8_t value) { sink_(context_, &value, 1); }
    void head(uint8_t major, uint64_t argument);

    Sink sink_;
    void* context_;
};

}  // namespace vorla
