#pragma once

#include <string>

/// Operations on files and folders that log their failures and never throw. Paths are absolute,
/// without a tilde. Any thread; two callers on the same path are not kept apart.
class CBaseFile {
 public:
    /// Whether anything stands at the path; a dangling link counts. An empty path is logged.
    static bool FileExist(const std::string& nsFilePath);

    /// Makes a folder and those above it, readable by the user alone. True if anything stands at
    /// the path, and, without making anything, for a path shorter than two characters.
    static bool CreateFolder(const std::string& nsFolderPath);

    /// Makes the folder that a file is to lie in.
    static void EnsureCreateParentDir(const std::string& nsFilePath);

    /// Copies a file, replacing a file at the target and making its folder. The target is complete
    /// or as it was before: the copy is made next to it and renamed.
    static bool CopyFile(const std::string& nsOldPath, const std::string& To);

    /// Removes a file, a link or an empty folder. True if there is nothing there.
    static bool RemoveFile(const std::string& filePath);
};
