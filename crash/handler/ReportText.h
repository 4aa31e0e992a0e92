#pragma once

#include "crash/CvrPreparedCrash.h"
#include "crash/handler/CollectedCrash.h"
#include "crash/handler/LocalTime.h"

namespace vorla::crash {

/// What happened: the words of a report that stand for the whole crash.
struct CrashEvent {
    int64_t time = 0;
    int signal = 0;
    std::string_view handler;
    std::string_view type;
    std::string_view error;
    std::string_view address;
    /// The handler was entered again while it handled this crash.
    bool onceMore = false;
    /// What the first attempt had gathered then.
    const CollectedCrash* firstAttempt = nullptr;
    std::string_view firstType, firstError, firstAddress;
};

/// Writes the report in the layout of docs/crash-reports.md. May run after a fault.
void writeReport(const CrashEvent& event, const CollectedCrash& crash,
                 const CvrPreparedCrash& prepared, const LocalTime& localTime, TextBuffer& to);

/// The frames' lines, each with a line end.
void writeStack(std::span<const CrashFrame> frames, TextBuffer& to);

}  // namespace vorla::crash
