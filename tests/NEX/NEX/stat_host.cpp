// A host that embeds the statistics alone. Arguments, each an action in its order:
//
//   url=ADDRESS     where statistics go
//   event=N         counts an event through the door of the capture path
//   start           starts the statistics
//   threads         prints how many threads the process has
//   wait=TEXT       runs the main loop until a log line holds the text, 20 s at most
//   sleep=MS        runs the main loop for a while
//   fork            forks a child that counts an event, starts the statistics and exits
//   stall=MS        holds the main thread up
//   info=FOLDER     takes the information dictionary from there
//   ua              prints the user agent
//   return, exit, abort, quick   ends the process in that way
//
// Prints each log line.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "NEX/NEX/OzuNexEnvironment.h"
#include "NEX/NEX/OzuNexManager.h"
#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"
#include "platform/base/raii.h"
#include "settings/StatisticDoor.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TestMainLoop.h"

namespace {

// Background threads log while the process exits.
std::mutex logMutex;
std::vector<std::string>& logLines() {
    static vorla::NoDestructor<std::vector<std::string>> lines;
    return *lines;
}

void print(const std::string& line) {
    const std::string whole = line + "\n";
    (void)!::write(STDOUT_FILENO, whole.data(), whole.size());
}

bool wasLogged(const std::string& text) {
    const std::lock_guard lock(logMutex);
    for (const std::string& line : logLines())
        if (line.find(text) != std::string::npos) return true;
    return false;
}

size_t threadCount() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<size_t>(std::distance(begin(tasks), end(tasks)));
}

void forkAndWait() {
    vorla::test::ChildProcess child([]() -> int {
        vorla::fireStatisticEvent(4242);
        OzuNexManager::defaultManager().startStat();
        std::exit(7);
    });
    print("child " + std::to_string(child.wait()));
}

class Host {
 public:
    void run(const std::string& action, const std::string& value) {
        if (action == "url") vorla::Bundle::framework().setInfoString("StatisticsURL", value);
        if (action == "event") vorla::fireStatisticEvent(std::stoi(value));
        if (action == "start") OzuNexManager::defaultManager().startStat();
        if (action == "threads") print("threads " + std::to_string(threadCount()));
        if (action == "wait") loop_.runUntil([&] { return wasLogged(value); });
        if (action == "sleep")
            loop_.runUntil([] { return false; }, std::chrono::milliseconds(std::stoi(value)));
        if (action == "stall")
            std::this_thread::sleep_for(std::chrono::milliseconds(std::stoi(value)));
        if (action == "info") vorla::Bundle::framework().setResourcePath(value);
        if (action == "ua") print("ua " + OzuNexEnvironment::zUA());
        if (action == "fork") forkAndWait();
        if (action == "exit") std::exit(0);
        if (action == "quick") ::_exit(0);
        if (action == "abort") std::abort();
    }

 private:
    vorla::test::TestMainLoop loop_;
};

}  // namespace

int main(int count, char** arguments) {
    vorla::setLogHandler([](std::string_view line) {
        print(std::string(line));
        const std::lock_guard lock(logMutex);
        logLines().emplace_back(line);
    });
    Host host;
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        const size_t equals = word.find('=');
        host.run(word.substr(0, equals),
                 equals == std::string::npos ? "" : word.substr(equals + 1));
    }
    return 0;
}
