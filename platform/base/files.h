#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vorla {

/// What is taken for a file that is to be read.
struct ReadLimits {
    /// A larger file is refused with EFBIG, unread.
    size_t largest = SIZE_MAX;
    /// Otherwise a link at the path itself is refused with ELOOP.
    bool followLink = true;
};

/// The whole file, or nothing when it cannot be read: errno says why, EINVAL for what is no plain
/// file.
std::optional<std::string> readFile(const std::string& path, const ReadLimits& limits = {});

/// Writes all of the bytes, whatever signals interrupt it. False, with errno set, when they do not
/// all fit.
bool writeAll(int fd, std::string_view bytes);

/// Replaces a file so that a reader, or the next start after a crash, sees the old bytes or the new
/// ones and never a mixture: writes a temporary neighbour, then renames it. `mode` is the new
/// file's permission, less what the umask takes. On failure returns false with errno set; the old
/// file is untouched and nothing is left behind.
bool writeFileAtomically(const std::string& path, std::string_view bytes, mode_t mode = 0644);

/// Removes what writers that were killed have left next to the path: temporary neighbours that are
/// older than an hour, since a younger one may still be written to.
void removeStaleTemporaries(const std::string& path);

/// Creates a directory and the missing ones above it, new ones with `mode`. True if it is there
/// afterwards.
bool createDirectories(const std::string& path, mode_t mode = 0755);

/// `path` with a leading "~" or "~/" replaced by the user's home directory.
std::string expandTilde(const std::string& path);

/// The user's home directory, without a trailing slash.
std::string homeDirectory();

/// Per-user directories of the XDG base directory rules (version 0.8), each with its
/// documented fallback under the home directory; relative values are ignored as they require.
std::string configHome();
std::string dataHome();

/// The user's desktop folder as named by the user-dirs configuration, else "Desktop" in the home
/// directory.
std::string desktopDirectory();

/// The user's documents folder in the same way, else "Documents" in the home directory.
std::string documentsDirectory();

}  // namespace vorla
