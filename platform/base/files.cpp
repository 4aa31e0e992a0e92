#include "platform/base/files.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>

#include "platform/base/raii.h"

namespace vorla {
namespace {

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

std::string xdgDirectory(const char* variable, const char* fallback) {
    const char* value = std::getenv(variable);
    if (value && value[0] == '/') return value;
    return homeDirectory() + fallback;
}

}  // namespace

std::optional<std::string> readFile(const std::string& path) {
    const UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!fd) return std::nullopt;
    struct stat facts = {};
    if (::fstat(fd.get(), &facts) != 0) return std::nullopt;
    if (!S_ISREG(facts.st_mode)) {
        errno = EINVAL;
        return std::nullopt;
    }
    std::string bytes;
    bytes.reserve(static_cast<size_t>(facts.st_size));
    char chunk[16384];
    for (;;) {
        const ssize_t count = ::read(fd.get(), chunk, sizeof chunk);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) return bytes;
        bytes.append(chunk, static_cast<size_t>(count));
    }
}

bool writeFileAtomically(const std::string& path, std::string_view bytes, mode_t mode) {
    std::string temporary = path + ".XXXXXX";
    UniqueFd fd(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!fd) return false;
    bool done = ::fchmod(fd.get(), mode) == 0 && writeAll(fd.get(), bytes);
    done = done && ::close(fd.release()) == 0 && std::rename(temporary.c_str(), path.c_str()) == 0;
    if (!done) {
        const int reason = errno;
        ::unlink(temporary.c_str());
        errno = reason;
    }
    return done;
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
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) return true;
    errno = ENOTDIR;
    return false;
}

std::string homeDirectory() {
    const char* home = std::getenv("HOME");
    if (home && home[0] == '/') return home[1] ? home : "";
    const passwd* user = ::getpwuid(::getuid());
    return user && user->pw_dir ? user->pw_dir : "";
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
    std::istringstream lines(readFile(configHome() + "/user-dirs.dirs").value_or(""));
    const std::string key = "XDG_DESKTOP_DIR=\"";
    const std::string homePrefix = "$HOME";
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(key)) continue;
        std::string value = line.substr(key.size(), line.find('"', key.size()) - key.size());
        if (value.starts_with(homePrefix))
            value = homeDirectory() + value.substr(homePrefix.size());
        while (value.size() > 1 && value.back() == '/') value.pop_back();
        if (!value.empty() && value[0] == '/') return value;
    }
    return homeDirectory() + "/Desktop";
}

}  // namespace vorla
