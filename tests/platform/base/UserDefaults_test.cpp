#include "platform/base/UserDefaults.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <random>
#include <thread>
#include <vector>

#include "platform/base/files.h"
#include "platform/base/raii.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using vorla::UserDefaults;
using vorla::test::ChildProcess;
using Value = UserDefaults::Value;

class Defaults : public testing::Test {
 protected:
    vorla::test::TemporaryFolder folder_;
    vorla::test::LogRecorder log_;
    std::string path_ = folder_ / "sub/host.json";
};

TEST_F(Defaults, EveryKindOfValueSurvives) {
    const std::pair<const char*, Value> rows[] = {
        {"yes", true},
        {"no", false},
        {"min", INT64_MIN},
        {"max", INT64_MAX},
        {"real", 0.1},
        {"whole real", 2.0},
        {"text", std::string("\xE6\x88\xAA \"quoted\"\n")},
        {"", std::string()},
        {"dictionary",
         UserDefaults::Dictionary{{"width", int64_t{3}}, {"colour", std::string("#ff0000")}}},
    };
    UserDefaults first(path_);
    for (const auto& [key, value] : rows) first.setObject(key, value);
    ASSERT_TRUE(first.synchronize());
    UserDefaults second(path_);
    for (const auto& [key, value] : rows) EXPECT_EQ(second.objectForKey(key), value) << key;
    second.removeObjectForKey("yes");
    EXPECT_FALSE(second.objectForKey("yes"));
    ASSERT_TRUE(second.synchronize());
    EXPECT_FALSE(first.objectForKey("yes"));
    EXPECT_TRUE(first.objectForKey("no"));
}

TEST_F(Defaults, ProcessesAndThreadsLoseNoneOfEachOthersKeys) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitizer starts no threads in a forked process";
#endif
    const auto writeKeys = [this](const std::string& who) {
        UserDefaults defaults(path_);
        std::vector<std::jthread> threads;
        for (const char* thread : {"a", "b"})
            threads.emplace_back([&, thread] {
                for (int i = 0; i < 50; ++i) {
                    defaults.setObject(who + thread + std::to_string(i), int64_t{i});
                    defaults.synchronize();
                }
            });
        return 0;
    };
    ChildProcess one([&] { return writeKeys("one"); });
    ChildProcess two([&] { return writeKeys("two"); });
    EXPECT_EQ(one.wait(), 0);
    EXPECT_EQ(two.wait(), 0);
    const auto stored = nlohmann::json::parse(vorla::readFile(path_).value_or(""));
    EXPECT_EQ(stored.size(), 200U);
}

TEST_F(Defaults, AnUnwritableFileKeepsValuesForTheProcess) {
    ASSERT_TRUE(vorla::writeFileAtomically(folder_ / "sub", "a file where the folder should be"));
    UserDefaults defaults(path_);
    defaults.setObject("a", true);
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_EQ(defaults.objectForKey("a"), Value(true));
    EXPECT_EQ(log_.count("cannot write preferences " + path_), 1);
    // The log's handler may come back for a value.
    std::optional<Value> heard;
    vorla::setLogHandler([&](std::string_view) { heard = defaults.objectForKey("a"); });
    EXPECT_FALSE(defaults.synchronize());
    vorla::setLogHandler({});
    EXPECT_EQ(heard, Value(true));
    std::filesystem::remove(folder_ / "sub");
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(UserDefaults(path_).objectForKey("a"), Value(true));
}

TEST_F(Defaults, ABrokenFileIsPutAsideAndAnUnreadableOneIsLeftAlone) {
    ASSERT_TRUE(vorla::createDirectories(folder_ / "sub"));
    const std::string deep =
        "{\"a\": 1, \"b\": " + std::string(200'000, '[') + std::string(200'000, ']') + "}";
    for (const std::string& text :
         std::vector<std::string>{"{\"a\": 1", "[1, 2]", "\xFF\xFF", deep}) {
        ASSERT_TRUE(vorla::writeFileAtomically(path_, text));
        UserDefaults defaults(path_);
        EXPECT_FALSE(defaults.objectForKey("a")) << text;
        defaults.setObject("b", true);
        EXPECT_TRUE(defaults.synchronize()) << text;
        EXPECT_EQ(UserDefaults(path_).objectForKey("b"), Value(true)) << text;
        EXPECT_EQ(vorla::readFile(path_ + ".broken"), text);
    }
    std::filesystem::remove(path_);
    std::filesystem::create_directory(path_);
    UserDefaults defaults(path_);
    defaults.setObject("b", true);
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_EQ(defaults.objectForKey("b"), Value(true));
}

TEST_F(Defaults, AStoppedProcessWithTheLockIsNotWaitedForForever) {
    UserDefaults defaults(path_);
    defaults.setObject("a", true);
    ASSERT_TRUE(defaults.synchronize());
    {
        const vorla::UniqueFd other(::open((path_ + ".lock").c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
        defaults.setObject("b", true);
        EXPECT_FALSE(defaults.synchronize());
    }
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(UserDefaults(path_).objectForKey("b"), Value(true));
}

}  // namespace
