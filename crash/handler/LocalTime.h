#pragma once

#include <cstdint>
#include <vector>

#include "crash/handler/TextBuffer.h"

namespace vorla::crash {

/// The local time zone as far as a crash may need it. The C library's own conversion takes a lock
/// and memory, so the zone's offsets are noted beforehand: for now, and for each change within the
/// next two years.
class LocalTime {
 public:
    /// Asks the C library. Not after a fault.
    explicit LocalTime(int64_t nowSeconds);

    // The rest may run after a fault. Times are in ms since 1970.

    /// "2024-03-09 17:05:01.250 +0100".
    void writeFull(int64_t time, TextBuffer& to) const;
    /// "2024-03-09 17:05:01".
    void writeSeconds(int64_t time, TextBuffer& to) const;
    /// "2024-03-09-17-05-01".
    void writeForFileName(int64_t time, TextBuffer& to) const;

 private:
    struct Change {
        int64_t from;
        int32_t offset;
    };
    struct Fields;

    [[nodiscard]] int32_t offsetAt(int64_t seconds) const;
    [[nodiscard]] Fields fieldsOf(int64_t time) const;

    std::vector<Change> changes_;
};

}  // namespace vorla::crash
