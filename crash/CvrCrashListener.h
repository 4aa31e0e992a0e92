#pragma once

class CvrExpObj;

/// Hears of a crash once its record is stored.
class CvrCrashListener {
 public:
    virtual ~CvrCrashListener() = default;

    /// In a crash this runs in the signal handler, on the alternate stack of the thread that died:
    /// only async-signal-safe calls are allowed, and of the record only `hash`, `expUid`,
    /// `exceptionType`, `time` and `cashTime` are filled; the rest is on disk. For a caught error
    /// it runs on the thread that reported it, with the whole record.
    virtual void onCrashHappened(const CvrExpObj& exp) = 0;
};
