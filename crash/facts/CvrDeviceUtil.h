#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

/// Facts about the machine and the process, and times as texts. Numbers that cannot be had are -1,
/// texts empty. Times are of the local time zone. Ordinary code only: never after a fault. Any
/// thread.
class CvrDeviceUtil {
 public:
    /// A random UUID (RFC 4122, version 4) in capitals.
    static std::string generateUUID();

    /// The machine's kind, as "x86_64".
    static std::string model();
    /// Major and minor version of the system as a number.
    static float getOSVerFloat();
    /// "%d.%d.%d(%@)": the distribution's version (or the kernel's where it has none) and the
    /// kernel's release.
    static std::string getOSVersion();
    static std::string get_sys_buildver();

    static int64_t now();
    /// Local midnight before the time, both in ms since 1970.
    static int64_t getTimeOfTodayStart(int64_t now);
    /// "%d-%02d-%02d-%02d-%02d-%02d" and "%d-%02d-%02d %02d:%02d:%02d" of a time in seconds.
    static std::string getFullTimeFileStrBy(int64_t seconds);
    static std::string getFullTimeStrBy(int64_t seconds);
    /// "%d-%02d-%02d"; empty for a time that has no year.
    static std::string getDayTimeStrBy(int64_t seconds);
    /// Seconds from the time to the next local midnight, 86400 at midnight itself.
    static int64_t secondsToMidnight(int64_t seconds);

    /// Bytes of the root file system, of memory, and of the path "/User".
    static int64_t getFreeSpace();
    static int64_t getTotalSpace();
    static int64_t getFreeMemory();
    static int64_t getTotalMemory();
    static int64_t getFreeSDCard();

    static std::string getCPUArchName() { return model(); }
    /// Per cent of the processors' time since the system started.
    static double getCpuUsage();

    static std::string getProcessName();
    static std::string getParentProcessName();
    static pid_t getProcessId();
    static pid_t getParentProcessId();
    /// The locale's codes, as "DE" and "de".
    static std::string country();
    static std::string language();

    static bool isReet() { return isJailBrokenDevice(); }
    /// Whether any of a list of files is there. Most desktops have some of them.
    static bool isJailBrokenDevice();
};
