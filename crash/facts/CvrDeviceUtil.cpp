#include "crash/facts/CvrDeviceUtil.h"

#include <errno.h>
#include <sys/random.h>
#include <sys/statvfs.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <sstream>

#include "NEX/NEX/VLNEXUtilities.h"
#include "crash/CvrLog.h"
#include "platform/base/files.h"

namespace {

tm localTime(int64_t seconds) {
    const auto time = static_cast<time_t>(seconds);
    tm parts = {};
    ::localtime_r(&time, &parts);
    return parts;
}

template <typename... Numbers>
std::string text(const char* format, Numbers... numbers) {
    char buffer[128];
    std::snprintf(buffer, sizeof buffer, format, numbers...);
    return buffer;
}

utsname systemNames() {
    utsname names = {};
    ::uname(&names);
    return names;
}

std::string firstLine(const std::string& path) {
    const std::string whole = vorla::readFile(path).value_or("");
    return whole.substr(0, whole.find('\n'));
}

int64_t spaceOf(const char* path, bool total) {
    struct statvfs facts = {};
    if (::statvfs(path, &facts) != 0) return -1;
    return static_cast<int64_t>((total ? facts.f_blocks : facts.f_bavail) * facts.f_frsize);
}

/// The part of "de_DE.UTF-8" before or after the "_".
std::string localePart(bool country) {
    const char* name = nullptr;
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (name = std::getenv(variable); name && *name) break;
    std::string locale = name ? name : "";
    locale = locale.substr(0, locale.find_first_of(".@"));
    const size_t line = locale.find('_');
    if (locale == "C" || locale == "POSIX") return {};
    if (!country) return locale.substr(0, line);
    return line == std::string::npos ? "" : locale.substr(line + 1);
}

}  // namespace

std::string CvrDeviceUtil::generateUUID() {
    std::array<uint8_t, 16> bytes = {};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        std::random_device fallback;
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(fallback());
    }
    bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0FU) | 0x40U);
    bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3FU) | 0x80U);
    std::string uuid;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) uuid += '-';
        uuid += text("%02X", unsigned{bytes[i]});
    }
    return uuid;
}

std::string CvrDeviceUtil::model() {
    return systemNames().machine;
}

float CvrDeviceUtil::getOSVerFloat() {
    const std::string version = VLNEXUtilities::operatingSystemVersion();
    return std::strtof(version.substr(0, version.rfind('.')).c_str(), nullptr);
}

std::string CvrDeviceUtil::getOSVersion() {
    return VLNEXUtilities::operatingSystemVersion() + "(" + get_sys_buildver() + ")";
}

std::string CvrDeviceUtil::get_sys_buildver() {
    return systemNames().release;
}

int64_t CvrDeviceUtil::now() {
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
}

int64_t CvrDeviceUtil::getTimeOfTodayStart(int64_t now) {
    tm parts = localTime(now / 1000);
    parts.tm_hour = parts.tm_min = parts.tm_sec = 0;
    parts.tm_isdst = -1;
    return int64_t{::mktime(&parts)} * 1000;
}

std::string CvrDeviceUtil::getFullTimeFileStrBy(int64_t seconds) {
    const tm at = localTime(seconds);
    return text("%d-%02d-%02d-%02d-%02d-%02d", at.tm_year + 1900, at.tm_mon + 1, at.tm_mday,
                at.tm_hour, at.tm_min, at.tm_sec);
}

std::string CvrDeviceUtil::getFullTimeStrBy(int64_t seconds) {
    const tm at = localTime(seconds);
    return text("%d-%02d-%02d %02d:%02d:%02d", at.tm_year + 1900, at.tm_mon + 1, at.tm_mday,
                at.tm_hour, at.tm_min, at.tm_sec);
}

std::string CvrDeviceUtil::getDayTimeStrBy(int64_t seconds) {
    const tm at = localTime(seconds);
    if (at.tm_mday == 0) return {};
    return text("%d-%02d-%02d", at.tm_year + 1900, at.tm_mon + 1, at.tm_mday);
}

int64_t CvrDeviceUtil::secondsToMidnight(int64_t seconds) {
    tm at = localTime(seconds);
    at.tm_hour = 24;
    at.tm_min = at.tm_sec = 0;
    at.tm_isdst = -1;
    return int64_t{::mktime(&at)} - seconds;
}

int64_t CvrDeviceUtil::getFreeSpace() {
    return spaceOf("/", false);
}
int64_t CvrDeviceUtil::getTotalSpace() {
    return spaceOf("/", true);
}
int64_t CvrDeviceUtil::getFreeSDCard() {
    return spaceOf("/User", false);
}

int64_t CvrDeviceUtil::getFreeMemory() {
    std::istringstream lines(vorla::readFile("/proc/meminfo").value_or(""));
    for (std::string line; std::getline(lines, line);)
        if (long long kib = 0; std::sscanf(line.c_str(), "MemAvailable: %lld kB", &kib) == 1)
            return kib * 1024;
    return -1;
}

int64_t CvrDeviceUtil::getTotalMemory() {
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    return pages < 0 ? -1 : int64_t{pages} * ::sysconf(_SC_PAGESIZE);
}

double CvrDeviceUtil::getCpuUsage() {
    std::istringstream numbers(firstLine("/proc/stat"));
    std::string name;
    double user = 0, nice = 0, system = 0, idle = 0;
    if (!(numbers >> name >> user >> nice >> system >> idle) || user + idle <= 0) {
        CvrLogAlways("Failed to fetch vm statistics");
        return -1;
    }
    const double busy = user + nice + system;
    return 100 * busy / (busy + idle);
}

std::string CvrDeviceUtil::getProcessName() {
    return ::program_invocation_short_name;
}

std::string CvrDeviceUtil::getParentProcessName() {
    return firstLine("/proc/" + std::to_string(getParentProcessId()) + "/comm");
}

pid_t CvrDeviceUtil::getProcessId() {
    return ::getpid();
}
pid_t CvrDeviceUtil::getParentProcessId() {
    return ::getppid();
}

std::string CvrDeviceUtil::country() {
    return localePart(true);
}
std::string CvrDeviceUtil::language() {
    return localePart(false);
}

bool CvrDeviceUtil::isJailBrokenDevice() {
    for (const char* path :
         {"/Applications/Cydia.app", "/Library/MobileSubstrate/MobileSubstrate.dylib", "/bin/bash",
          "/usr/sbin/sshd", "/etc/apt", "/private/var/lib/apt/", "/User/Applications/"})
        if (::access(path, F_OK) == 0) return true;
    return false;
}
