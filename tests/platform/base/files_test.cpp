#include "platform/base/files.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <random>
#include <thread>

#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using vorla::readFile;
using vorla::writeFileAtomically;
using vorla::test::ScopedEnvironment;

class Files : public testing::Test {
 protected:
    vorla::test::TemporaryFolder folder_;

    [[nodiscard]] long entries() const {
        return std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator());
    }
};

TEST_F(Files, WrittenBytesComeBackWithTheModeAskedFor) {
    const std::string bytes("a\0b\xFF", 4);
    for (const mode_t mode : {0600U, 0644U}) {
        ASSERT_TRUE(writeFileAtomically(folder_ / "f", bytes, mode));
        struct stat facts = {};
        ASSERT_EQ(::stat((folder_ / "f").c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 07777U, mode);
        EXPECT_EQ(readFile(folder_ / "f"), bytes);
    }
    ASSERT_TRUE(writeFileAtomically(folder_ / "f", ""));
    EXPECT_EQ(readFile(folder_ / "f"), "");
    EXPECT_EQ(entries(), 1);
    EXPECT_TRUE(writeFileAtomically(folder_ / std::string(255, 'n'), "x"));
}

TEST_F(Files, AFailedWriteLeavesNothingBehind) {
    ASSERT_TRUE(writeFileAtomically(folder_ / "f", "old"));
    EXPECT_FALSE(writeFileAtomically(folder_ / "f/below", "x"));
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_FALSE(writeFileAtomically(folder_ / "missing/f", "x"));
    EXPECT_EQ(errno, ENOENT);
    fs::create_directory(folder_ / "d");
    EXPECT_FALSE(writeFileAtomically(folder_ / "d", "x"));
    EXPECT_EQ(readFile(folder_ / "f"), "old");
    EXPECT_EQ(entries(), 2);
}

TEST_F(Files, AFullDiskLeavesTheOldFile) {
    ASSERT_TRUE(writeFileAtomically(folder_ / "f", "old"));
    vorla::test::ChildProcess child([this] {
        const rlimit limit{1024, 1024};
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        return writeFileAtomically(folder_ / "f", std::string(4096, 'n')) ? 1 : 0;
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(readFile(folder_ / "f"), "old");
    EXPECT_EQ(entries(), 1);
}

TEST_F(Files, AReaderAndAKilledWriterNeverLeaveAMixture) {
    const std::string old(100000, 'o');
    const std::string next(70000, 'n');
    ASSERT_TRUE(writeFileAtomically(folder_ / "f", old));
    std::mt19937 random(7);
    for (int round = 0; round < 30; ++round) {
        vorla::test::ChildProcess writer([&] {
            for (;;) {
                writeFileAtomically(folder_ / "f", next);
                writeFileAtomically(folder_ / "f", old);
            }
            return 0;
        });
        for (int i = 0; i < 5; ++i) {
            const auto seen = readFile(folder_ / "f");
            ASSERT_TRUE(seen == old || seen == next);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
        writer.kill(SIGKILL);
        writer.wait();
        const auto seen = readFile(folder_ / "f");
        ASSERT_TRUE(seen == old || seen == next);
    }
}

TEST_F(Files, OnlyRegularFilesAreReadAndNothingIsWaitedFor) {
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    for (const std::string& path : {folder_ / "pipe", folder_.path(), folder_ / "missing",
                                    std::string("/dev/null"), std::string()})
        EXPECT_FALSE(readFile(path)) << path;
    EXPECT_TRUE(readFile("/proc/self/status").value_or("").starts_with("Name:"));
}

TEST_F(Files, DirectoriesAreMadeWithThoseAboveThem) {
    EXPECT_TRUE(vorla::createDirectories(folder_ / "a/b//c/", 0700));
    EXPECT_TRUE(fs::is_directory(folder_ / "a/b/c"));
    EXPECT_EQ(fs::status(folder_ / "a").permissions(), fs::perms::owner_all);
    EXPECT_TRUE(vorla::createDirectories(folder_ / "a/b"));
    EXPECT_TRUE(vorla::createDirectories("/"));
    ASSERT_TRUE(writeFileAtomically(folder_ / "f", ""));
    EXPECT_FALSE(vorla::createDirectories(folder_ / "f"));
    EXPECT_FALSE(vorla::createDirectories(folder_ / "f/d"));
    EXPECT_EQ(errno, ENOTDIR);
    EXPECT_FALSE(vorla::createDirectories(""));
}

TEST(UserDirectories, FollowTheEnvironment) {
    const struct {
        const char* home;
        std::optional<std::string> config;
        const char* expectedHome;
        const char* expectedConfig;
    } rows[] = {
        {"/home/u", {}, "/home/u", "/home/u/.config"},
        {"/home/u/", {}, "/home/u", "/home/u/.config"},
        {"/", {}, "", "/.config"},
        {"/home/u", "/cfg", "/home/u", "/cfg"},
        {"/home/u", "relative", "/home/u", "/home/u/.config"},
        {"/home/u", "", "/home/u", "/home/u/.config"},
    };
    for (const auto& row : rows) {
        const ScopedEnvironment env({{"HOME", row.home}, {"XDG_CONFIG_HOME", row.config}});
        EXPECT_EQ(vorla::homeDirectory(), row.expectedHome) << row.home;
        EXPECT_EQ(vorla::configHome(), row.expectedConfig) << row.home;
    }
    const ScopedEnvironment env({{"HOME", "/home/u"}, {"XDG_DATA_HOME", std::nullopt}});
    EXPECT_EQ(vorla::dataHome(), "/home/u/.local/share");
    EXPECT_EQ(vorla::expandTilde("~"), "/home/u");
    EXPECT_EQ(vorla::expandTilde("~/a"), "/home/u/a");
    EXPECT_EQ(vorla::expandTilde("~other/a"), "~other/a");
    EXPECT_EQ(vorla::expandTilde("/a/~/b"), "/a/~/b");
    const ScopedEnvironment none({{"HOME", std::nullopt}});
    EXPECT_TRUE(vorla::homeDirectory().starts_with("/"));
}

TEST_F(Files, DesktopComesFromTheUserDirsFile) {
    const ScopedEnvironment env({{"HOME", "/home/u"}, {"XDG_CONFIG_HOME", folder_.path()}});
    EXPECT_EQ(vorla::desktopDirectory(), "/home/u/Desktop");
    const struct {
        const char* text;
        const char* expected;
    } rows[] = {
        {"XDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n", "/home/u/Schreibtisch"},
        {"# XDG_DESKTOP_DIR=\"/no\"\n  XDG_DESKTOP_DIR=\"/data/desk/\"", "/data/desk"},
        {"XDG_DESKTOP_DIR=\"$HOME/\"\n", "/home/u"},
        {"XDG_DESKTOP_DIR=\"$HOME/a \\\"b\\\" \\$c\"\n", "/home/u/a \"b\" $c"},
        {"XDG_DESKTOP_DIR=\"$HOMEless\"\n", "/home/u/Desktop"},
        {"XDG_DESKTOP_DIR=\"relative\"\n", "/home/u/Desktop"},
        {"XDG_DESKTOP_DIR=\"", "/home/u/Desktop"},
        {"XDG_DOWNLOAD_DIR=\"/d\"\nXDG_DESKTOP_DIR=\"/one\"\nXDG_DESKTOP_DIR=\"/two\"", "/two"},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(writeFileAtomically(folder_ / "user-dirs.dirs", row.text));
        EXPECT_EQ(vorla::desktopDirectory(), row.expected) << row.text;
    }
}

}  // namespace
