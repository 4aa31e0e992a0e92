#include "platform/base/HelperProgram.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>

extern char** environ;

namespace vorla {

int startHelper(const std::string& program, const std::vector<std::string>& arguments, int input,
                int output, pid_t& child) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    // Out of the way first: a host without standard files has them at the low numbers.
    std::vector<UniqueFd> kept;
    const int wanted[] = {input, output, -1};
    for (int place = 0; place <= STDERR_FILENO; ++place) {
        if (wanted[place] < 0) continue;
        kept.emplace_back(::fcntl(wanted[place], F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
        if (!kept.back()) {
            const int error = errno;
            posix_spawn_file_actions_destroy(&files);
            return error;
        }
        posix_spawn_file_actions_adddup2(&files, kept.back().get(), place);
    }
    for (int place = 0; place <= STDERR_FILENO; ++place)
        if (wanted[place] < 0)
            posix_spawn_file_actions_addopen(&files, place, "/dev/null", O_RDWR, 0);
    posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
    // A host may block or ignore signals that must be able to end the program.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), program);
    std::vector<char*> line;
    for (std::string& word : words) line.push_back(word.data());
    line.push_back(nullptr);
    const int error =
        ::posix_spawn(&child, program.c_str(), &files, &attributes, line.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return error;
}

UniqueFd memoryFile(std::string_view bytes) {
    UniqueFd file(::memfd_create("vorla", MFD_CLOEXEC));
    while (file && !bytes.empty()) {
        const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
        if (count > 0)
            bytes.remove_prefix(static_cast<size_t>(count));
        else if (errno != EINTR)
            return UniqueFd();
    }
    if (file) ::lseek(file.get(), 0, SEEK_SET);
    return file;
}

}  // namespace vorla
