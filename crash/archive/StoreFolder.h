#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/raii.h"

namespace vorla {

/// A file of a store folder.
struct StoreFile {
    std::string name;
    size_t size = 0;
};

/// Keeps other threads and processes out for as long as it lives, or until `release`.
class StoreLock {
 public:
    StoreLock() = default;
    explicit StoreLock(UniqueFd fd) : fd_(std::move(fd)) {}
    StoreLock(StoreLock&&) noexcept = default;
    StoreLock& operator=(StoreLock&&) noexcept = default;
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;
    ~StoreLock() { release(); }

    explicit operator bool() const { return static_cast<bool>(fd_); }
    void release();

 private:
    UniqueFd fd_;
};

/// The folder that the crash reporter keeps its files in, for this user's eyes only.
///
/// Anything may lie there: only regular files of our own are read, listed or removed; links, pipes
/// and other people's files are left alone and never opened by what they point to. Names are those
/// of entries, without a slash. Everything goes through the one descriptor, so that a folder that
/// is renamed or replaced meanwhile does not lead elsewhere. Any thread.
class StoreFolder {
 public:
    enum class Origin {
        /// Our own place: made when missing and closed to others when it is not.
        Default,
        /// One that the host has named: refused when it is a link or others may write to it.
        Given,
    };

    /// None, with errno set, when there is no such folder and none can be made.
    static std::optional<StoreFolder> open(const std::string& path, Origin origin);

    /// The whole file; none, with errno set (ENOENT for no file), when it cannot be read, is not to
    /// be trusted or is larger than `largest`.
    [[nodiscard]] std::optional<std::string> read(const std::string& name, size_t largest) const;

    /// Puts the bytes in place of the file, readable for the user only: whoever reads finds the old
    /// ones or the new ones, also when the process dies meanwhile. With `keepOld` an entry of that
    /// name makes it fail (EEXIST). On failure errno says why, and nothing has changed.
    [[nodiscard]] bool write(const std::string& name, std::string_view bytes,
                             bool keepOld = false) const;

    bool remove(const std::string& name) const;

    [[nodiscard]] std::vector<StoreFile> list() const;

    /// Removes what processes that no longer run have left of unfinished writing.
    void removeLeftovers() const;

    /// Holds the folder for a change of several files. Waits for at most that long; whoever has
    /// stopped while holding it is not waited for any longer, and the lock is then empty.
    [[nodiscard]] StoreLock lock(std::chrono::milliseconds most) const;

    /// Takes the claim of that name, or returns an empty lock when another process has it. A claim
    /// may be held for long; it ends with the process at the latest and does not pass to children.
    [[nodiscard]] StoreLock claim(const std::string& name) const;

    /// The name of the file that `lock` locks.
    static constexpr const char* lockName = ".lock";
    /// What names of unfinished files begin with; the process's number and "-" follow.
    static constexpr const char* unfinishedPrefix = ".tmp-";

 private:
    explicit StoreFolder(UniqueFd fd) : fd_(std::move(fd)) {}
    [[nodiscard]] UniqueFd openOwn(const std::string& name, int flags) const;

    UniqueFd fd_;
};

}  // namespace vorla
