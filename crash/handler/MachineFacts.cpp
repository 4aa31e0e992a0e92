#include "crash/handler/MachineFacts.h"

#include <sys/random.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstddef>
#include <ctime>
#include <string_view>

#include "crash/handler/FaultFolder.h"

namespace vorla::crash {
namespace {

/// Takes the next whole number off the text; -1 when there is none.
int64_t takeNumber(std::string_view& text) {
    const size_t start = text.find_first_of("0123456789");
    if (start == std::string_view::npos) return -1;
    text.remove_prefix(start);
    int64_t value = 0;
    size_t length = 0;
    for (; length < text.size() && length < 18 && text[length] >= '0' && text[length] <= '9';
         ++length)
        value = value * 10 + (text[length] - '0');
    text.remove_prefix(length);
    return value;
}

int64_t readCpuUse() {
    char memory[512];
    std::string_view text = readSystemFile("/proc/stat", memory);
    text = text.substr(0, text.find('\n'));
    int64_t total = 0;
    int64_t idle = 0;
    // user, nice, system, idle, iowait, irq, softirq, steal; see proc(5).
    for (int column = 0; column < 8; ++column) {
        const int64_t ticks = takeNumber(text);
        if (ticks < 0) break;
        total += ticks;
        if (column == 3 || column == 4) idle += ticks;
    }
    if (total <= 0) return -1'000'000;
    return static_cast<int64_t>(static_cast<double>(total - idle) / static_cast<double>(total) *
                                100e6);
}

int64_t readFreeMemory() {
    char memory[512];
    std::string_view text = readSystemFile("/proc/meminfo", memory);
    const size_t line = text.find("MemAvailable:");
    if (line == std::string_view::npos) return -1;
    text.remove_prefix(line);
    const int64_t kibibytes = takeNumber(text);
    return kibibytes < 0 ? -1 : kibibytes * 1024;
}

}  // namespace

MachineFacts MachineFacts::read() {
    MachineFacts facts{.cpuUse = readCpuUse(), .freeMemory = readFreeMemory()};
    struct statvfs disk {};
    if (::statvfs("/", &disk) == 0)
        facts.freeDisk = static_cast<int64_t>(disk.f_bavail) * static_cast<int64_t>(disk.f_frsize);
    return facts;
}

void writeRandomUuid(char (&uuid)[36]) {
    uint8_t bytes[16];
    if (::getrandom(bytes, sizeof bytes, GRND_NONBLOCK) != sizeof bytes) {
        // Too early after the system's start: the clock and the process tell records apart.
        timespec now{};
        ::clock_gettime(CLOCK_REALTIME, &now);
        uint64_t state = static_cast<uint64_t>(now.tv_sec) * 1'000'000'000 +
                         static_cast<uint64_t>(now.tv_nsec) + static_cast<uint64_t>(::getpid());
        for (uint8_t& byte : bytes) {
            state = state * 6364136223846793005 + 1442695040888963407;
            byte = static_cast<uint8_t>(state >> 56);
        }
    }
    bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3F) | 0x80);
    size_t place = 0;
    for (size_t i = 0; i < sizeof bytes; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) uuid[place++] = '-';
        uuid[place++] = "0123456789ABCDEF"[bytes[i] >> 4];
        uuid[place++] = "0123456789ABCDEF"[bytes[i] & 0xF];
    }
}

}  // namespace vorla::crash
