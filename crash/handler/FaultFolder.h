#pragma once

#include <sys/types.h>

#include <cstdint>
#include <span>
#include <string_view>

#include "crash/archive/ArchiveWriter.h"
#include "crash/handler/Arena.h"

namespace vorla::crash {

/// A file that is put in place of another, or in a new place, once it is whole; until then it has
/// another name, and it removes itself unless it is committed. May run after a fault.
class NewFile {
 public:
    NewFile(int folder, Arena& arena);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    void write(const void* bytes, size_t count);
    /// For ArchiveWriter; `context` is the file.
    static void sink(void* context, const void* bytes, size_t count) {
        static_cast<NewFile*>(context)->write(bytes, count);
    }

    /// Puts the file under its name. False when something could not be written, or, unless it may
    /// replace, when there is such a file already (`errno` is EEXIST then).
    enum class Existing : uint8_t { Replace, Keep };
    bool commit(const char* name, Existing existing);

 private:
    void flush();

    int folder_;
    int file_ = -1;
    bool failed_ = false;
    char temporaryName_[64];
    std::span<uint8_t> buffer_;
    size_t buffered_ = 0;
};

/// The store's folder, opened for the files of one crash, and locked against other processes as
/// far as that is possible within 50 ms. Links are not followed, and what is not ours or no regular
/// file is not read. May run after a fault.
class FaultFolder {
 public:
    FaultFolder(const char* folder, const char* lockPath);
    FaultFolder(const FaultFolder&) = delete;
    FaultFolder& operator=(const FaultFolder&) = delete;
    ~FaultFolder();

    /// Whether it is there, is ours, and nobody else may write to it.
    explicit operator bool() const { return folder_ >= 0; }
    [[nodiscard]] int get() const { return folder_; }

    /// The file's bytes; none when it cannot be read or is larger than `largest`, with errno ENOENT
    /// when there is no such file.
    std::span<const uint8_t> read(const char* name, size_t largest, Arena& arena) const;

 private:
    int folder_ = -1;
    int lock_ = -1;
};

/// A file of the system such as those of /proc, as far as it fits.
std::string_view readSystemFile(const char* path, std::span<char> memory);

/// Descriptors kept in reserve for a process that has used up its own.
void keepDescriptors();
void releaseDescriptors();

}  // namespace vorla::crash
