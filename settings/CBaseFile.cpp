#include "settings/CBaseFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/base/VLLog.h"
#include "platform/base/files.h"
#include "platform/base/raii.h"

namespace {

namespace fs = std::filesystem;

std::error_code lastError() {
    return {errno, std::generic_category()};
}

unsigned long codeOf(const std::error_code& error) {
    return static_cast<unsigned long>(error.value());
}

/// Copies next to the target first, so that a full disk leaves neither half a file nor a lost one.
std::error_code copyThroughNeighbour(const std::string& from, const std::string& to) {
    std::string neighbour = to + ".XXXXXX";
    const vorla::UniqueFd reserved(::mkostemp(neighbour.data(), O_CLOEXEC));
    if (!reserved) return lastError();
    std::error_code error;
    fs::copy_file(from, neighbour, fs::copy_options::overwrite_existing, error);
    if (!error) fs::rename(neighbour, to, error);
    if (error) ::unlink(neighbour.c_str());
    return error;
}

}  // namespace

bool CBaseFile::FileExist(const std::string& nsFilePath) {
    if (nsFilePath.empty()) {
        VLLogError("file exist error, nsFilePath nil");
        return false;
    }
    struct stat facts = {};
    return ::lstat(nsFilePath.c_str(), &facts) == 0;
}

bool CBaseFile::CreateFolder(const std::string& nsFolderPath) {
    if (FileExist(nsFolderPath) || nsFolderPath.size() < 2) return true;
    if (vorla::createDirectories(nsFolderPath, 0700)) return true;
    const std::error_code error = lastError();
    VLLogError("create file path:%s fail:%s domain=%s, code=%lx", nsFolderPath.c_str(),
               error.message().c_str(), error.category().name(), codeOf(error));
    return false;
}

void CBaseFile::EnsureCreateParentDir(const std::string& nsFilePath) {
    if (nsFilePath.empty()) return;
    const std::string targetPathDir = fs::path(nsFilePath).parent_path().string();
    if (targetPathDir.empty()) {
        VLLogError("EnsureCreateParentDir failed. nsFilePath=%s", nsFilePath.c_str());
        return;
    }
    if (!CreateFolder(targetPathDir))
        VLLogError("EnsureCreateParentDir failed. targetPathDir=%s", targetPathDir.c_str());
}

bool CBaseFile::CopyFile(const std::string& nsOldPath, const std::string& To) {
    if (nsOldPath == To) {
        VLLogError("copy file failed. nsOldPath same as nsNewPath. nsOldPath=%s",
                   nsOldPath.c_str());
        return false;
    }
    EnsureCreateParentDir(To);
    const std::error_code error = copyThroughNeighbour(nsOldPath, To);
    if (!error) return true;
    VLLogError("copy file error, nsOldPath=%s, nsNewPath=%s, domain=%s, code=%lx, err=%s",
               nsOldPath.c_str(), To.c_str(), error.category().name(), codeOf(error),
               error.message().c_str());
    return false;
}

bool CBaseFile::RemoveFile(const std::string& filePath) {
    if (!FileExist(filePath)) return true;
    std::error_code error;
    fs::remove(filePath, error);
    if (!error) return true;
    VLLogError("remove file failed. filePath=%s, domain=%s, code=%lx, err=%s", filePath.c_str(),
               error.category().name(), codeOf(error), error.message().c_str());
    return false;
}
