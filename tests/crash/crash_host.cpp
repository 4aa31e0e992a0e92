// A host without a toolkit that embeds crash reporting alone. Arguments, each an action in its
// order:
//
//   url=ADDRESS    where crash reports go
//   merge          has repeated crashes merged
//   version=TEXT   the program's version
//   start          starts crash reporting as the capture component does; prints "started
//                  MICROSECONDS"
//   active, inactive   becomes the program in use, or ceases to be
//   stored         prints "stored N"
//   wait=TEXT      waits until a log line holds the text, 20 s at most; prints "timeout" else
//   sleep=MS       waits
//   memory         prints "memory KIB": what the process has of its own
//   crash=KIND     dies
//   exit, quick    ends the process in that way
//
// Prints each log line as "log ...".
#include <unistd.h>
#include <vorla/CrashReporter.h>
#include <vorla/VLInfo.h>
#include <vorla/VLLogging.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>

#include "crash/VLCrashCvrManager.h"
#include "examples/vorla-host/CrashKinds.h"
#include "platform/base/raii.h"

namespace {

using Clock = std::chrono::steady_clock;

/// Background threads log while the process exits: never destroyed.
struct Log {
    std::mutex mutex;
    std::condition_variable grown;
    std::string text;
};
Log& log() {
    static vorla::NoDestructor<Log> instance;
    return *instance;
}

void print(const std::string& line) {
    const std::string whole = line + "\n";
    (void)!::write(STDOUT_FILENO, whole.data(), whole.size());
}

void waitForLog(const std::string& text) {
    std::unique_lock lock(log().mutex);
    const auto found = [&] { return log().text.find(text) != std::string::npos; };
    if (!log().grown.wait_for(lock, std::chrono::seconds(20), found)) print("timeout");
}

long ownMemory() {
    std::ifstream lines("/proc/self/smaps_rollup");
    long sum = 0;
    for (std::string word; lines >> word;)
        if (long kib = 0; word.starts_with("Private_") && lines >> kib) sum += kib;
    return sum;
}

void start() {
    const auto before = Clock::now();
    VLCrashCvrManager::startCrashReport();
    const auto took = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - before);
    print("started " + std::to_string(took.count()));
}

void run(const std::string& action, const std::string& value) {
    CrashReporter& reporter = CrashReporter::sharedInstance();
    if (action == "url") VLSetInfoValue(VLInfoKeyCrashSyncURL, value);
    if (action == "merge") reporter.setExpMergeUpload(true);
    if (action == "version") reporter.setBundleVer(value);
    if (action == "start") start();
    if (action == "active") reporter.applicationWillBecomeActive();
    if (action == "inactive") reporter.applicationWillResignActive();
    if (action == "stored") print("stored " + std::to_string(reporter.storedCrashCount()));
    if (action == "wait") waitForLog(value);
    if (action == "sleep") std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(value)));
    if (action == "memory") print("memory " + std::to_string(ownMemory()));
    if (action == "crash") crashKind(value)->provoke();
    if (action == "exit") std::exit(0);
    if (action == "quick") ::_exit(0);
}

}  // namespace

int main(int count, char** arguments) {
    VLSetLogHandler([](std::string_view line) {
        const std::string text(line);
        print("log " + text);
        const std::lock_guard lock(log().mutex);
        log().text += text + "\n";
        log().grown.notify_all();
    });
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        const size_t equals = word.find('=');
        run(word.substr(0, equals), equals == std::string::npos ? "" : word.substr(equals + 1));
    }
    return 0;
}
