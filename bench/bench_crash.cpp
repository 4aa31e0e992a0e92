// What the crash handler costs: from the fault to the end of the process with 1, 10 and 50 threads,
// against the same program without it; installing it; memory that it takes while nothing happens.
//   build/release/bin/bench_crash [FOLDER]

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "crash/CvrCrashHandler.h"

namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// What a child process hands to the one that waits for its death.
struct Shared {
    Clock::time_point fault;
    double install = 0;
    long memoryKiB = 0;
};

Shared* shared() {
    static auto* const memory = static_cast<Shared*>(
        ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    return memory;
}

void install(const std::string& folder) {
    CvrPreparedCrash state;
    state.folder = folder;
    state.keyValueFile = folder + "/.cvrios.plist";
    state.crashMetaFile = folder + "/.crash_meta.data";
    state.lockFile = folder + "/.lock";
    CvrCrashHandler::sharedInstance().prepare(state);
    CvrCrashHandler::sharedInstance().installHandler();
}

long residentKiB() {
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
    return 0;
}

/// A stack of a usual depth.
[[gnu::noinline]] void waitDeep(int depth) {
    if (depth > 0)
        waitDeep(depth - 1);
    else
        ::pause();
    asm volatile("");
}

[[noreturn]] void die(int threads, const std::string& folder) {
    if (!folder.empty()) {
        const long before = residentKiB();
        const auto start = Clock::now();
        install(folder);
        shared()->install = milliseconds(Clock::now() - start);
        shared()->memoryKiB = residentKiB() - before;
    }
    for (int i = 1; i < threads; ++i) std::thread(waitDeep, 20).detach();
    ::usleep(20'000);
    shared()->fault = Clock::now();
    *static_cast<volatile int*>(nullptr) = 1;
    ::_exit(1);
}

double faultToDeath(int threads, const std::string& folder) {
    const pid_t child = ::fork();
    if (child == 0) die(threads, folder);
    int status = 0;
    ::waitpid(child, &status, 0);
    return milliseconds(Clock::now() - shared()->fault);
}

}  // namespace

int main(int count, char** arguments) {
    constexpr rlimit noCore{0, 0};
    ::setrlimit(RLIMIT_CORE, &noCore);
    const std::filesystem::path folder =
        (count > 1 ? std::filesystem::path(arguments[1]) : std::filesystem::temp_directory_path()) /
        ("bench_crash." + std::to_string(::getpid()));
    std::vector<double> installs;
    std::vector<double> memory;
    for (const int threads : {1, 10, 50}) {
        std::vector<double> with;
        std::vector<double> without;
        for (int i = 0; i < 15; ++i) {
            without.push_back(faultToDeath(threads, ""));
            std::filesystem::create_directory(folder);
            std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
            with.push_back(faultToDeath(threads, folder));
            std::filesystem::remove_all(folder);
            installs.push_back(shared()->install);
            memory.push_back(static_cast<double>(shared()->memoryKiB));
        }
        std::printf("%2d threads: %6.2f ms from fault to death, %6.2f ms without, %6.2f ms more\n",
                    threads, median(with), median(without), median(with) - median(without));
    }
    std::printf("install: %.2f ms, %.0f KiB more resident memory\n", median(installs),
                median(memory));
}
