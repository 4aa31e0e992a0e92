#pragma once

#include <cstdint>

namespace vorla::crash {

/// What a record says about the machine at the moment of the crash. -1 stands for unknown.
struct MachineFacts {
    /// Per cent of the processors' time since the system was started, in millionths of a per cent.
    int64_t cpuUse = -1'000'000;
    int64_t freeMemory = -1;
    int64_t freeDisk = -1;

    /// Asks the system. May run after a fault.
    static MachineFacts read();
};

/// 36 characters of a random UUID (RFC 9562, version 4), upper case. May run after a fault.
void writeRandomUuid(char (&uuid)[36]);

}  // namespace vorla::crash
