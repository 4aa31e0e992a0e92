#include "crash/handler/FaultFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <algorithm>
#include <ctime>

#include "crash/archive/StoreFolder.h"
#include "crash/handler/TextBuffer.h"
#include "crash/handler/ThreadStopper.h"

namespace vorla::crash {
namespace {

constexpr int64_t longestLockWait = 50;
constexpr size_t bufferSize = 16384;

/// Folder, lock file, one file, /proc/self/task and a file in that: never more at once.
int reserve[5] = {-1, -1, -1, -1, -1};
dev_t nullDevice = 0;

bool isOursAlone(int folder) {
    struct stat status {};
    return ::fstat(folder, &status) == 0 && status.st_uid == ::geteuid() &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

int openLock(const char* path) {
    const int lock = ::open(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    const int64_t end = monotonicMilliseconds() + longestLockWait;
    while (lock >= 0 && ::flock(lock, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK &&
           monotonicMilliseconds() < end) {
        const timespec pause{0, 2'000'000};
        ::nanosleep(&pause, nullptr);
    }
    return lock;
}

}  // namespace

NewFile::NewFile(int folder, Arena& arena) : folder_(folder) {
    TextBuffer name(temporaryName_);
    name.text(StoreFolder::unfinishedPrefix).decimal(::getpid()).text("-crash").text({"", 1});
    buffer_ = arena.takeSpan<uint8_t>(bufferSize);
    // Left behind by a process that had our number and was killed.
    ::unlinkat(folder, temporaryName_, 0);
    file_ = ::openat(folder, temporaryName_, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                     0600);
    failed_ = file_ < 0 || buffer_.empty();
}

NewFile::~NewFile() {
    if (file_ < 0) return;
    ::close(file_);
    ::unlinkat(folder_, temporaryName_, 0);
}

void NewFile::write(const void* bytes, size_t count) {
    const auto* from = static_cast<const uint8_t*>(bytes);
    while (count > 0 && !failed_) {
        if (buffered_ == buffer_.size()) flush();
        const size_t taken = std::min(count, buffer_.size() - buffered_);
        std::memcpy(&buffer_[buffered_], from, taken);
        buffered_ += taken;
        from += taken;
        count -= taken;
    }
}

void NewFile::flush() {
    size_t done = 0;
    while (done < buffered_ && !failed_) {
        const ssize_t count = ::write(file_, &buffer_[done], buffered_ - done);
        if (count > 0)
            done += static_cast<size_t>(count);
        else if (count == 0 || errno != EINTR)
            failed_ = true;
    }
    buffered_ = 0;
}

bool NewFile::commit(const char* name, Existing existing) {
    if (!failed_) flush();
    if (failed_) return false;
    if (existing == Existing::Replace) {
        if (::renameat(folder_, temporaryName_, folder_, name) != 0) return false;
    } else if (::renameat2(folder_, temporaryName_, folder_, name, RENAME_NOREPLACE) != 0) {
        // Not every file system knows that; a second name fails where there is one already.
        if (errno == EEXIST || ::linkat(folder_, temporaryName_, folder_, name, 0) != 0)
            return false;
        ::unlinkat(folder_, temporaryName_, 0);
    }
    ::close(file_);
    file_ = -1;
    return true;
}

FaultFolder::FaultFolder(const char* folder, const char* lockPath) {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    folder_ = ::open(folder, flags);
    if (folder_ < 0 && errno == ENOENT && ::mkdir(folder, 0700) == 0)
        folder_ = ::open(folder, flags);
    if (folder_ >= 0 && !isOursAlone(folder_)) {
        ::close(folder_);
        folder_ = -1;
    }
    if (folder_ >= 0 && *lockPath) lock_ = openLock(lockPath);
}

FaultFolder::~FaultFolder() {
    if (lock_ >= 0) ::close(lock_);
    if (folder_ >= 0) ::close(folder_);
}

std::span<const uint8_t> FaultFolder::read(const char* name, size_t largest, Arena& arena) const {
    const int file = ::openat(folder_, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return {};
    struct stat status {};
    std::span<uint8_t> bytes;
    size_t done = 0;
    if (::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
        status.st_size > 0 && static_cast<size_t>(status.st_size) <= largest)
        bytes = arena.takeSpan<uint8_t>(static_cast<size_t>(status.st_size));
    while (done < bytes.size()) {
        const ssize_t count = ::read(file, &bytes[done], bytes.size() - done);
        if (count <= 0 && !(count < 0 && errno == EINTR)) break;
        if (count > 0) done += static_cast<size_t>(count);
    }
    ::close(file);
    errno = 0;
    return done == bytes.size() ? bytes : bytes.first(0);
}

std::string_view readSystemFile(const char* path, std::span<char> memory) {
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return {};
    const ssize_t count = ::read(file, memory.data(), memory.size());
    ::close(file);
    return {memory.data(), count > 0 ? static_cast<size_t>(count) : 0};
}

void keepDescriptors() {
    struct stat status {};
    for (int& descriptor : reserve) {
        if (descriptor >= 0) continue;
        descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (descriptor >= 0 && ::fstat(descriptor, &status) == 0) nullDevice = status.st_rdev;
    }
}

void releaseDescriptors() {
    for (int& descriptor : reserve) {
        // The host may have closed all descriptors, and have a file of its own there.
        struct stat status {};
        if (descriptor >= 0 && ::fstat(descriptor, &status) == 0 && S_ISCHR(status.st_mode) &&
            status.st_rdev == nullDevice)
            ::close(descriptor);
        descriptor = -1;
    }
}

}  // namespace vorla::crash
