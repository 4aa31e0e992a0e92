#include "tests/support/TestProgram.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace vorla::test {
namespace {

std::vector<std::string> commandLine(std::vector<std::string> words, const std::string& path) {
    // Programs of the build lie in one directory.
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    words.insert(words.begin(), path.empty() ? (folder / "vorla-test-client").string() : path);
    return words;
}

}  // namespace

TestProgram::TestProgram(const std::vector<std::string>& arguments, const std::string& path,
                         const std::string& errorFile)
    : PipedProgram(commandLine(arguments, path), Input::Piped, errorFile) {}

void TestProgram::suspend() {
    kill(SIGSTOP);
    int status = 0;
    waitpid(pid_, &status, WUNTRACED);
}

bool TestProgram::send(std::string_view line) {
    const std::string whole = std::string(line) + '\n';
    return write(input_.get(), whole.data(), whole.size()) == static_cast<ssize_t>(whole.size());
}

int TestProgram::waitForExit(int milliseconds) {
    input_.reset();
    return wait(milliseconds);
}

bool TestProgram::waitForLine(std::string_view prefix, std::string* rest, int milliseconds) {
    using std::chrono::steady_clock;
    const auto end = steady_clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        const auto left = duration_cast<std::chrono::milliseconds>(end - steady_clock::now());
        const auto line = nextLine(std::max(0, static_cast<int>(left.count())));
        if (!line) return false;
        if (!line->starts_with(prefix)) continue;
        if (rest != nullptr) *rest = line->substr(prefix.size());
        return true;
    }
}

xcb_window_t TestProgram::waitUntilReady() {
    std::string id;
    if (!waitForLine("window ", &id) || !waitForLine("ready")) return XCB_NONE;
    return static_cast<xcb_window_t>(std::stoul(id, nullptr, 16));
}

int fileDescriptorsOf(int pid) {
    std::error_code error;
    int count = 0;
    for (std::filesystem::directory_iterator it("/proc/" + std::to_string(pid) + "/fd", error), end;
         !error && it != end; it.increment(error))
        ++count;
    return error ? -1 : count;
}

int sharedMemorySegmentsOf(int pid) {
    std::ifstream maps("/proc/" + std::to_string(pid) + "/maps");
    if (!maps) return -1;
    int count = 0;
    for (std::string line; std::getline(maps, line);)
        if (line.find("/memfd:") != std::string::npos ||
            line.find("/dev/shm/") != std::string::npos)
            ++count;
    std::ifstream segments("/proc/sysvipc/shm");
    std::string line;
    std::getline(segments, line);  // the column heads
    while (std::getline(segments, line)) {
        std::istringstream fields(line);
        long key = 0, id = 0, permissions = 0, size = 0, creator = -1;
        fields >> key >> id >> permissions >> size >> creator;
        if (creator == pid) ++count;
    }
    return count;
}

}  // namespace vorla::test
