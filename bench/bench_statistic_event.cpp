// What one counted event costs, the rewrite of the whole file included, against a bare
// write-and-rename of a file of that size, in turn in one folder.
//   build/release/bin/bench_statistic_event [FOLDER]

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "NEX/NEX/VLStatisticManager.h"
#include "platform/base/files.h"

namespace {

double microseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - start;
    return took.count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The least that replacing a file safely can be: four calls into the system.
void bareReplace(const std::string& folder, const std::string& bytes) {
    const std::string temporary = folder + "/bare.new";
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0 || ::write(fd, bytes.data(), bytes.size()) < 0 || ::close(fd) != 0 ||
        ::rename(temporary.c_str(), (folder + "/bare").c_str()) != 0)
        std::abort();
}

void compare(const std::string& folder, int counters) {
    VLStatisticManager manager(folder, "");
    for (int i = 0; i < counters; ++i) manager.statisticEvent(static_cast<uint64_t>(1000 + i));
    const std::string bytes = vorla::readFile(manager.statFilePath()).value_or("");
    std::vector<double> ours;
    std::vector<double> bare;
    for (int i = 0; i < 3000; ++i) {
        ours.push_back(microseconds([&] { manager.statisticEvent(1000); }));
        bare.push_back(microseconds([&] { bareReplace(folder, bytes); }));
    }
    std::printf("%4d counters, %5zu bytes: event %7.1f us, bare %7.1f us, ratio %.3f\n", counters,
                bytes.size(), median(ours), median(bare), median(ours) / median(bare));
    manager.clearStatInfo();
}

}  // namespace

int main(int count, char** arguments) {
    const std::string place = count > 1 ? arguments[1] : std::filesystem::temp_directory_path();
    std::string folder = place + "/bench-statistic-XXXXXX";
    if (!::mkdtemp(folder.data())) return 1;
    for (const int counters : {1, 20, 60, 200}) compare(folder, counters);
    std::filesystem::remove_all(folder);
    return 0;
}
