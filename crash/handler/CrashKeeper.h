#pragma once

#include "crash/handler/RecordFile.h"

namespace vorla::crash {

/// The record that was stored for a crash, if any.
struct KeptRecord {
    ShortText<64> file;
    ShortText<32> hash;

    void clear() {
        file.clear();
        hash.clear();
    }
};

/// Identifies the crash, keeps it on disk as far as the host's filters want it, calls the host's
/// function and notifies the listeners. A record that was `kept` before is replaced. A forked child
/// leaves the parent's files alone. May run after a fault.
void keepCrash(CrashFacts& facts, bool isForkedChild, KeptRecord& kept, Arena& arena);

/// In ms since 1970.
int64_t wallClockMilliseconds();

}  // namespace vorla::crash
