#include "settings/CBaseFile.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/base/files.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

class BaseFile : public testing::Test {
 protected:
    vorla::test::TemporaryFolder folder_;
    vorla::test::LogRecorder log_;

    std::string file(const std::string& name, const std::string& bytes) {
        EXPECT_TRUE(vorla::writeFileAtomically(folder_ / name, bytes));
        return folder_ / name;
    }
    [[nodiscard]] size_t entries() const {
        size_t count = 0;
        for ([[maybe_unused]] const auto& entry : fs::recursive_directory_iterator(folder_.path()))
            ++count;
        return count;
    }
};

TEST_F(BaseFile, ParentOfAFileIsMade) {
    CBaseFile::EnsureCreateParentDir(folder_ / "a/b/file");
    EXPECT_TRUE(fs::is_directory(folder_ / "a/b"));
    EXPECT_FALSE(fs::exists(folder_ / "a/b/file"));
    CBaseFile::EnsureCreateParentDir("");
    EXPECT_TRUE(log_.lines().empty());
    CBaseFile::EnsureCreateParentDir("bare");
    EXPECT_EQ(log_.count("EnsureCreateParentDir failed. nsFilePath=bare"), 1);
    CBaseFile::EnsureCreateParentDir(file("plain", "") + "/x/y");
    EXPECT_EQ(log_.count("EnsureCreateParentDir failed. targetPathDir="), 1);
}

TEST_F(BaseFile, CopyReplacesTheTargetAndMakesItsFolder) {
    const std::string from = file("from", "new bytes");
    const std::string existing = file("to", "old bytes that are longer");
    EXPECT_TRUE(CBaseFile::CopyFile(from, existing));
    EXPECT_EQ(vorla::readFile(existing), "new bytes");
    EXPECT_TRUE(CBaseFile::CopyFile(from, folder_ / "deep/er/to"));
    EXPECT_EQ(vorla::readFile(folder_ / "deep/er/to"), "new bytes");
    EXPECT_EQ(vorla::readFile(from), "new bytes");
    EXPECT_TRUE(log_.lines().empty());
}

TEST_F(BaseFile, FailedCopyLeavesEverythingAsItWas) {
    const std::string target = file("to", "kept");
    EXPECT_FALSE(CBaseFile::CopyFile(target, target));
    EXPECT_EQ(log_.count("copy file failed. nsOldPath same as nsNewPath. nsOldPath=" + target), 1);
    EXPECT_FALSE(CBaseFile::CopyFile(folder_ / "missing", target));
    EXPECT_EQ(log_.count("copy file error, nsOldPath=" + (folder_ / "missing") +
                         ", nsNewPath=" + target + ", domain="),
              1);
    EXPECT_EQ(log_.count("code=2, err=No such file or directory"), 1);
    EXPECT_FALSE(CBaseFile::CopyFile(target, target + "/below"));
    EXPECT_EQ(vorla::readFile(target), "kept");
    EXPECT_EQ(entries(), 1U);
}

TEST_F(BaseFile, RemovesFilesAndLinksButNoFilledFolder) {
    const std::string target = file("target", "kept");
    fs::create_symlink(target, folder_ / "link");
    EXPECT_TRUE(CBaseFile::RemoveFile(folder_ / "link"));
    EXPECT_TRUE(fs::exists(target));
    EXPECT_FALSE(CBaseFile::RemoveFile(folder_.path()));
    EXPECT_EQ(log_.count("remove file failed. filePath=" + folder_.path() + ", domain="), 1);
    EXPECT_TRUE(CBaseFile::RemoveFile(target));
    EXPECT_TRUE(CBaseFile::RemoveFile(target));
    EXPECT_EQ(entries(), 0U);
}

}  // namespace
