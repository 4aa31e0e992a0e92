#include "platform/base/files.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

#include "platform/base/raii.h"

namespace vorla {

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

namespace {

std::string homeOfAccount() {
    passwd account = {};
    passwd* found = nullptr;
    std::vector<char> buffer(16384);
    ::getpwuid_r(::getuid(), &account, buffer.data(), buffer.size(), &found);
    return found && found->pw_dir ? found->pw_dir : "";
}

/// The text up to the closing quote, with the shell's backslashes taken out.
std::string unquoted(std::string_view text) {
    std::string value;
    for (size_t i = 0; i < text.size() && text[i] != '"'; ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) ++i;
        value += text[i];
    }
    return value;
}

std::string xdgDirectory(const char* variable, const char* fallback) {
    const char* value = std::getenv(variable);
    if (value && value[0] == '/') return value;
    return homeDirectory() + fallback;
}

std::string userDirectory(const std::string& key, const char* fallback) {
    std::istringstream lines(readFile(configHome() + "/user-dirs.dirs").value_or(""));
    std::string found = homeDirectory() + fallback;
    for (std::string line; std::getline(lines, line);) {
        line.erase(0, line.find_first_not_of(" \t"));
        if (!line.starts_with(key)) continue;
        std::string value = unquoted(line.substr(key.size()));
        if (value == "$HOME" || value.starts_with("$HOME/")) value.replace(0, 5, homeDirectory());
        while (value.size() > 1 && value.back() == '/') value.pop_back();
        if (value.starts_with('/')) found = value;
    }
    return found;
}

/// A new file next to `path`. Unlike those of mkostemp its permission follows the umask, which can
/// be neither asked for nor set safely while other threads run.
UniqueFd createTemporary(const std::string& path, mode_t mode, std::string& name) {
    constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    // A name as long as names may be has no room for more: its beginning must do.
    constexpr size_t longestBeginning = NAME_MAX - 7;
    const std::string beginning = path.substr(0, path.rfind('/') + 1 + longestBeginning) + ".";
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::array<unsigned char, 6> random = {};
        if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size()))
            return UniqueFd();
        name = beginning;
        for (const unsigned char byte : random) name += letters[byte % letters.size()];
        UniqueFd fd(::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (fd || errno != EEXIST) return fd;
    }
    return UniqueFd();
}

}  // namespace

std::optional<std::string> readFile(const std::string& path, const ReadLimits& limits) {
    // Without O_NONBLOCK the open of a pipe would wait for a writer.
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | (limits.followLink ? 0 : O_NOFOLLOW);
    const UniqueFd fd(::open(path.c_str(), flags));
    if (!fd) return std::nullopt;
    struct stat facts = {};
    if (::fstat(fd.get(), &facts) != 0) return std::nullopt;
    if (!S_ISREG(facts.st_mode)) {
        errno = EINVAL;
        return std::nullopt;
    }
    std::string bytes;
    if (static_cast<size_t>(facts.st_size) <= limits.largest)
        bytes.reserve(static_cast<size_t>(facts.st_size));
    char chunk[16384];
    ssize_t count = 0;
    // The size is checked again while reading: the file may be growing.
    for (auto size = static_cast<size_t>(facts.st_size);; size = bytes.size()) {
        if (size > limits.largest) {
            errno = EFBIG;
            return std::nullopt;
        }
        count = ::read(fd.get(), chunk, sizeof chunk);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) return bytes;
        bytes.append(chunk, static_cast<size_t>(count));
    }
}

bool writeFileAtomically(const std::string& path, std::string_view bytes, mode_t mode) {
    std::string temporary;
    UniqueFd fd = createTemporary(path, mode, temporary);
    if (!fd) return false;
    bool done = writeAll(fd.get(), bytes);
    done = done && ::close(fd.release()) == 0 && std::rename(temporary.c_str(), path.c_str()) == 0;
    if (!done) {
        const int reason = errno;
        ::unlink(temporary.c_str());
        errno = reason;
    }
    return done;
}

void removeStaleTemporaries(const std::string& path) {
    namespace fs = std::filesystem;
    const fs::path target(path);
    const std::string prefix = target.filename().string() + ".";
    std::error_code error;
    const auto oldest = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (fs::directory_iterator each(target.parent_path(), error), end; !error && each != end;
         each.increment(error)) {
        const std::string name = each->path().filename().string();
        // Six characters in place of the X that the writer asked for.
        const std::string_view rest =
            std::string_view(name).substr(name.starts_with(prefix) ? prefix.size() : name.size());
        const bool temporary =
            rest.size() == 6 && rest != "broken" &&
            std::ranges::all_of(rest, [](unsigned char c) { return std::isalnum(c); });
        std::error_code ignored;
        if (temporary && fs::is_regular_file(each->symlink_status(ignored)) &&
            each->last_write_time(ignored) < oldest)
            fs::remove(each->path(), ignored);
    }
}

bool createDirectories(const std::string& path, mode_t mode) {
    if (path.empty()) {
        errno = ENOENT;
        return false;
    }
    for (size_t end = 1; end != std::string::npos;) {
        end = path.find('/', end);
        const std::string part = path.substr(0, end);
        if (::mkdir(part.c_str(), mode) != 0 && errno != EEXIST && errno != EROFS) return false;
        if (end != std::string::npos) ++end;
    }
    struct stat facts = {};
    if (::stat(path.c_str(), &facts) != 0) return false;
    if (S_ISDIR(facts.st_mode)) return true;
    errno = ENOTDIR;
    return false;
}

std::string homeDirectory() {
    const char* home = std::getenv("HOME");
    std::string path = home && home[0] == '/' ? home : homeOfAccount();
    while (path.ends_with('/')) path.pop_back();
    return path;
}

std::string expandTilde(const std::string& path) {
    if (path == "~" || path.starts_with("~/")) return homeDirectory() + path.substr(1);
    return path;
}

std::string configHome() {
    return xdgDirectory("XDG_CONFIG_HOME", "/.config");
}
std::string dataHome() {
    return xdgDirectory("XDG_DATA_HOME", "/.local/share");
}

std::string desktopDirectory() {
    return userDirectory("XDG_DESKTOP_DIR=\"", "/Desktop");
}

std::string documentsDirectory() {
    return userDirectory("XDG_DOCUMENTS_DIR=\"", "/Documents");
}

}  // namespace vorla
