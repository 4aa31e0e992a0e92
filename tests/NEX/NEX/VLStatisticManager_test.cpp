#include "NEX/NEX/VLStatisticManager.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <filesystem>
#include <stdexcept>
#include <thread>
#include <vector>

#include "NEX/NEX/VLNEXUtilities.h"
#include "platform/base/files.h"
#include "settings/plist.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using vorla::test::ChildProcess;

class Statistics : public testing::Test {
 protected:
    vorla::test::TemporaryFolder folder_;
    const vorla::test::ScopedEnvironment home_{{{"HOME", folder_ / "home"},
                                                {"XDG_DATA_HOME", std::nullopt},
                                                {"XDG_CONFIG_HOME", std::nullopt}}};
    const std::string counters_ = folder_ / "data/Containers/host/Data/Documemts";
    const std::string path_ = counters_ + "/VorlaSDKStat.plist";
    const std::string old_ = folder_ / "Documents/VorlaSDKStat.plist";

    [[nodiscard]] json onDisk() const {
        return readFromPlistFile(path_).value_or(json("no dictionary"));
    }
};

TEST_F(Statistics, EachEventIsOnDiskAtOnceInPrivateFiles) {
    VLStatisticManager manager(counters_, old_);
    manager.statisticEvent(1001);
    manager.statisticEvent(1001);
    manager.statisticEvent(7);
    EXPECT_EQ(onDisk(), json({{"1001", 2}, {"7", 1}}));
    struct stat facts = {};
    ASSERT_EQ(::stat(path_.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
    for (std::string above = counters_; above != folder_.path();
         above = fs::path(above).parent_path()) {
        ASSERT_EQ(::stat(above.c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 0777U, 0700U) << above;
    }
    VLStatisticManager next(counters_, old_);
    next.statisticEvent(7);
    EXPECT_EQ(onDisk(), json({{"1001", 2}, {"7", 2}}));
}

TEST_F(Statistics, OnlyNumbersAreCountedUp) {
    VLStatisticManager manager(counters_, old_);
    const struct {
        json before, after;
    } rows[] = {
        {41, 42},         {0, 1},          {true, 2},
        {"text", "text"}, {2.9, 3},        {-1, 0},
        {-2.5, 1},        {UINT64_MAX, 0}, {json::array({1}), json::array({1})},
    };
    for (const auto& row : rows) {
        manager.statisticEvent(5, row.before);
        EXPECT_EQ(onDisk(), json({{"5", row.before}}));
        manager.statisticEvent(5);
        EXPECT_EQ(onDisk(), json({{"5", row.after}})) << row.before;
    }
    manager.statisticEvent(5, std::nullopt);
    EXPECT_EQ(onDisk(), json::object());
    manager.statisticEvent(UINT64_MAX);
    EXPECT_EQ(onDisk(), json({{"18446744073709551615", 1}}));
}

TEST_F(Statistics, FourThreadsLoseNoEvent) {
    VLStatisticManager manager(counters_, old_);
    std::atomic<bool> counting = true;
    std::jthread reader([&] {
        while (counting) EXPECT_TRUE(readFromPlistFile(path_).value_or(json::object()).is_object());
    });
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&, t] {
                for (int i = 0; i < 2500; ++i) manager.statisticEvent(i % 2 ? 1 : 100 + t);
            });
    }
    counting = false;
    reader.join();
    EXPECT_EQ(onDisk(),
              json({{"1", 5000}, {"100", 1250}, {"101", 1250}, {"102", 1250}, {"103", 1250}}));
    EXPECT_EQ(std::distance(fs::directory_iterator(counters_), fs::directory_iterator()), 1);
}

TEST_F(Statistics, DamagedAndForeignFilesAreSurvivedAndPutAside) {
    const vorla::test::LogRecorder log;
    ASSERT_TRUE(vorla::createDirectories(counters_));
    for (const std::string& bytes : {std::string(), std::string("<plist version=\"1.0\">"),
                                     std::string("\x82\x01\x02"), std::string(100000, '\xFF')}) {
        ASSERT_TRUE(vorla::writeFileAtomically(path_, bytes));
        VLStatisticManager manager(counters_, old_);
        manager.statisticEvent(3);
        EXPECT_EQ(onDisk(), json({{"3", 1}}));
        EXPECT_EQ(vorla::readFile(path_ + ".broken"), bytes);
    }
    fs::remove(path_);
    fs::create_directory(path_);
    VLStatisticManager manager(counters_, old_);
    manager.statisticEvent(3);
    EXPECT_EQ(manager.statInfo()["3"], 1);
}

// Each of these waited for the counters' own lock, and so for ever.
TEST_F(Statistics, ALogHandlerMayCountForkAndWaitForThreads) {
    ASSERT_TRUE(vorla::createDirectories(counters_));
    ASSERT_TRUE(vorla::writeFileAtomically(path_, "foreign"));
    VLStatisticManager manager(counters_, old_);
    int lines = 0;
    vorla::setLogHandler([&](std::string_view) {
        ++lines;
        manager.statisticEvent(1);
        std::jthread([&] { manager.statisticEvent(2); }).join();
        EXPECT_EQ(ChildProcess([&] { return manager.statInfo()["2"] == 1 ? 0 : 1; }).wait(), 0);
        throw std::runtime_error("a fault of the host's");
    });
    manager.statisticEvent(3);
    vorla::setLogHandler({});
    EXPECT_EQ(lines, 1);
    EXPECT_EQ(onDisk(), json({{"1", 1}, {"2", 1}, {"3", 1}}));
}

TEST_F(Statistics, AGoodFileThatCannotBeReadNowIsAddedToLater) {
    ASSERT_TRUE(vorla::createDirectories(counters_));
    ASSERT_TRUE(writeToPlistFile({{"1", 4}, {"2", 2}}, path_));
    ChildProcess host([this] {
        const vorla::test::LogRecorder log;
        rlimit files{};
        ::getrlimit(RLIMIT_NOFILE, &files);
        const rlimit none{0, files.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
        VLStatisticManager manager(counters_, old_);
        manager.statisticEvent(1);
        manager.statisticEvent(3);
        ::setrlimit(RLIMIT_NOFILE, &files);
        if (log.lines().size() != 1 || onDisk() != json({{"1", 4}, {"2", 2}})) return 1;
        manager.statisticEvent(1);
        return onDisk() == json({{"1", 6}, {"2", 2}, {"3", 1}}) ? 0 : 2;
    });
    EXPECT_EQ(host.wait(), 0);
    EXPECT_FALSE(fs::exists(path_ + ".broken"));
}

TEST_F(Statistics, HugeFilesLinksAndLeftoversAreCleared) {
    const vorla::test::LogRecorder log;
    ASSERT_TRUE(vorla::createDirectories(counters_));
    const std::string huge = std::string("\xBA\0\x20\0\0", 5) + std::string(300000, '\x60');
    ASSERT_TRUE(vorla::writeFileAtomically(path_, huge));
    for (const char* name : {".AbC123", ".zzzzzz", ".toolong", ".lock"})
        ASSERT_TRUE(vorla::writeFileAtomically(path_ + name, "left"));
    fs::last_write_time(path_ + ".AbC123",
                        fs::file_time_type::clock::now() - std::chrono::hours(2));
    VLStatisticManager(counters_, old_).statisticEvent(3);
    EXPECT_EQ(onDisk(), json({{"3", 1}}));
    EXPECT_EQ(fs::file_size(path_ + ".broken"), huge.size());
    EXPECT_FALSE(fs::exists(path_ + ".AbC123"));
    EXPECT_TRUE(fs::exists(path_ + ".zzzzzz") && fs::exists(path_ + ".toolong"));

    ASSERT_TRUE(writeToPlistFile({{"9", 9}}, folder_ / "elsewhere"));
    fs::remove(path_);
    fs::create_symlink(folder_ / "elsewhere", path_);
    VLStatisticManager manager(counters_, old_);
    manager.statisticEvent(4);
    EXPECT_EQ(onDisk(), json({{"4", 1}}));
    EXPECT_EQ(readFromPlistFile(folder_ / "elsewhere"), json({{"9", 9}}));

    fs::remove_all(counters_);
    manager.statisticEvent(4);
    EXPECT_EQ(onDisk(), json({{"4", 2}}));
}

TEST_F(Statistics, AReadOnlyFolderKeepsItsFile) {
    ASSERT_TRUE(vorla::createDirectories(counters_, 0755));
    ASSERT_TRUE(writeToPlistFile({{"1", 4}}, path_, 0644));
    fs::permissions(folder_.path(), fs::perms(0755));
    fs::permissions(counters_, fs::perms(0555));
    ChildProcess host([this] {
        // Nothing is read-only for the superuser.
        if (::geteuid() == 0 && ::setuid(65534) != 0) return 9;
        const vorla::test::LogRecorder log;
        VLStatisticManager manager(counters_, old_);
        manager.statisticEvent(1);
        if (manager.statInfo()["1"] != 5) return 1;
        manager.resetStatistic();
        return manager.statInfo()["1"] == 4 ? 0 : 2;
    });
    EXPECT_EQ(host.wait(), 0);
    EXPECT_EQ(onDisk(), json({{"1", 4}}));
    fs::permissions(counters_, fs::perms::owner_all);
}

TEST_F(Statistics, AnOldFileMovesAndAResetStartsFromNothing) {
    ASSERT_TRUE(vorla::createDirectories(folder_ / "Documents"));
    ASSERT_TRUE(writeToPlistFile({{"1", 10}}, old_));
    VLStatisticManager manager(counters_, old_);
    manager.statisticEvent(1);
    EXPECT_EQ(onDisk(), json({{"1", 11}}));
    EXPECT_FALSE(fs::exists(old_));
    manager.resetStatistic();
    EXPECT_FALSE(fs::exists(path_));
    manager.statisticEvent(2);
    EXPECT_EQ(onDisk(), json({{"2", 1}}));
}

TEST_F(Statistics, AForkedChildMayCountWhileThreadsDo) {
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "a child forked while a thread allocates waits for the sanitizer's own locks";
#endif
    ChildProcess host([] {
        VLStatisticManager& manager = VLStatisticManager::defaultStatisticManager();
        std::jthread counter([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) manager.statisticEvent(1);
        });
        for (int i = 0; i < 50; ++i) {
            ChildProcess child([&] {
                ::alarm(10);
                manager.statisticEvent(2);
                return 0;
            });
            if (child.wait() != 0) return 1;
        }
        return 0;
    });
    EXPECT_EQ(host.wait(), 0);
}

}  // namespace
