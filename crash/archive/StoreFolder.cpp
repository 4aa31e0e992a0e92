#include "crash/archive/StoreFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <memory>
#include <thread>

#include "platform/base/files.h"

namespace vorla {
namespace {

struct DirCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

bool refuse(int reason) {
    errno = reason;
    return false;
}

bool isOwnRegular(const struct stat& facts) {
    return S_ISREG(facts.st_mode) && facts.st_uid == ::geteuid();
}

bool isAcceptable(int fd, StoreFolder::Origin origin) {
    struct stat facts = {};
    if (::fstat(fd, &facts) != 0) return false;
    if (facts.st_uid != ::geteuid()) return refuse(EPERM);
    if (origin == StoreFolder::Origin::Default)
        return (facts.st_mode & 0777) == 0700 || ::fchmod(fd, 0700) == 0;
    return (facts.st_mode & 0022) == 0 || refuse(EPERM);
}

std::string unfinishedName() {
    static std::atomic<unsigned> count = 0;
    return StoreFolder::unfinishedPrefix + std::to_string(::getpid()) + "-" +
           std::to_string(++count);
}

/// Whether the process that began an unfinished file is gone.
bool isLeftover(std::string_view name) {
    const std::string_view prefix = StoreFolder::unfinishedPrefix;
    if (!name.starts_with(prefix)) return false;
    pid_t process = 0;
    std::from_chars(name.data() + prefix.size(), name.data() + name.size(), process);
    return process <= 0 || (::kill(process, 0) != 0 && errno == ESRCH);
}

}  // namespace

void StoreLock::release() {
    // A child that was forked meanwhile has the same lock: closing alone would leave it in place.
    if (fd_) ::flock(fd_.get(), LOCK_UN);
    fd_.reset();
}

std::optional<StoreFolder> StoreFolder::open(const std::string& path, Origin origin) {
    if (!createDirectories(path, 0700)) return std::nullopt;
    UniqueFd fd(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!fd || !isAcceptable(fd.get(), origin)) return std::nullopt;
    return StoreFolder(std::move(fd));
}

UniqueFd StoreFolder::openOwn(const std::string& name, int flags) const {
    // Without O_NONBLOCK the open of a pipe would wait for its other end.
    UniqueFd fd(
        ::openat(fd_.get(), name.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat facts = {};
    if (!fd || ::fstat(fd.get(), &facts) != 0) return {};
    if (isOwnRegular(facts)) return fd;
    errno = EPERM;
    return {};
}

std::optional<std::string> StoreFolder::read(const std::string& name, size_t largest) const {
    const UniqueFd fd = openOwn(name, O_RDONLY);
    if (!fd) return std::nullopt;
    std::string bytes;
    char chunk[16384];
    for (;;) {
        const ssize_t count = ::read(fd.get(), chunk, sizeof chunk);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) return bytes;
        if (static_cast<size_t>(count) > largest - bytes.size()) {
            errno = EFBIG;
            return std::nullopt;
        }
        bytes.append(chunk, static_cast<size_t>(count));
    }
}

bool StoreFolder::write(const std::string& name, std::string_view bytes, bool keepOld) const {
    const std::string unfinished = unfinishedName();
    UniqueFd fd = openOwn(unfinished, O_WRONLY | O_CREAT | O_EXCL);
    if (!fd) return false;
    const bool done = ::fchmod(fd.get(), 0600) == 0 && writeAll(fd.get(), bytes) &&
                      ::close(fd.release()) == 0 &&
                      ::renameat2(fd_.get(), unfinished.c_str(), fd_.get(), name.c_str(),
                                  keepOld ? RENAME_NOREPLACE : 0U) == 0;
    if (done) return true;
    const int reason = errno;
    ::unlinkat(fd_.get(), unfinished.c_str(), 0);
    return refuse(reason);
}

bool StoreFolder::remove(const std::string& name) const {
    struct stat facts = {};
    if (::fstatat(fd_.get(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0) return false;
    if (!isOwnRegular(facts)) return refuse(EPERM);
    return ::unlinkat(fd_.get(), name.c_str(), 0) == 0;
}

std::vector<StoreFile> StoreFolder::list() const {
    std::vector<StoreFile> files;
    UniqueFd fd(::openat(fd_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd) return files;
    const std::unique_ptr<DIR, DirCloser> folder(::fdopendir(fd.get()));
    if (!folder) return files;
    (void)fd.release();
    while (const dirent* entry = ::readdir(folder.get())) {
        struct stat facts = {};
        if (::fstatat(fd_.get(), entry->d_name, &facts, AT_SYMLINK_NOFOLLOW) == 0 &&
            isOwnRegular(facts))
            files.push_back({entry->d_name, static_cast<size_t>(facts.st_size)});
    }
    return files;
}

void StoreFolder::removeLeftovers() const {
    for (const StoreFile& file : list())
        if (isLeftover(file.name)) remove(file.name);
}

StoreLock StoreFolder::lock(std::chrono::milliseconds most) const {
    UniqueFd fd = openOwn(lockName, O_RDWR | O_CREAT);
    const auto end = std::chrono::steady_clock::now() + most;
    while (fd && ::flock(fd.get(), LOCK_EX | LOCK_NB) != 0) {
        if (std::chrono::steady_clock::now() >= end) return {};
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return StoreLock(std::move(fd));
}

StoreLock StoreFolder::claim(const std::string& name) const {
    UniqueFd fd = openOwn(name, O_RDWR | O_CREAT);
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    if (fd && ::fcntl(fd.get(), F_SETLK, &whole) != 0) fd.reset();
    return StoreLock(std::move(fd));
}

}  // namespace vorla
