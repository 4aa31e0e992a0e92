#include "settings/plist.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "platform/base/files.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using nlohmann::json;

class Plist : public testing::Test {
 protected:
    vorla::test::TemporaryFolder folder_;
    vorla::test::LogRecorder log_;
    std::string path_ = folder_ / "counters.plist";
};

TEST_F(Plist, KeepsNumbersAndTextsExactly) {
    const json dictionary = {
        {"1001", 1U},      {"big", UINT64_MAX}, {"negative", INT64_MIN},
        {"real", 0.1},     {"yes", true},       {"text", "\xE6\x88\xAA\xE5\x9B\xBE"},
        {"", "empty key"}, {"list", {1, 2}},    {"nothing", nullptr},
    };
    ASSERT_TRUE(writeToPlistFile(dictionary, path_));
    EXPECT_EQ(readFromPlistFile(path_), dictionary);
    struct stat facts = {};
    ASSERT_EQ(::stat(path_.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);

    ASSERT_TRUE(writeToPlistFile(json::object(), path_));
    EXPECT_EQ(readFromPlistFile(path_), json::object());
    EXPECT_TRUE(log_.lines().empty());
}

TEST_F(Plist, ForeignFilesReadAsNone) {
    const struct {
        const char* name;
        std::string bytes;
    } rows[] = {
        {"empty", ""},
        {"text", "<?xml version=\"1.0\"?><plist/>"},
        {"list instead of dictionary", "\x82\x01\x02"},
        {"cut in the middle", "\xA2\x61\x31\x01\x61"},
        {"bytes after the end", std::string("\xA0\x00", 2)},
        {"key that is no text", "\xA1\x01\x01"},
        {"endless announced length", "\xBB\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
        {"huge announced text", "\xA1\x7B\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFFx"},
        {"nested too deep", "\xA1\x61x" + std::string(1 << 20, '\x81')},
        {"nested maps",
         [] {
             std::string bytes;
             for (int i = 0; i < 200000; ++i) bytes += "\xA1\x61x";
             return bytes;
         }()},
        {"too large", std::string((16U << 20) + 1, '\xA0')},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(vorla::writeFileAtomically(path_, row.bytes));
        const auto before = log_.count("readFromPlistFile exception:");
        EXPECT_FALSE(readFromPlistFile(path_));
        EXPECT_EQ(log_.count("readFromPlistFile exception:"), before + 1);
    }
}

TEST_F(Plist, AMissingFileIsNoFault) {
    EXPECT_FALSE(readFromPlistFile(path_));
    EXPECT_TRUE(log_.lines().empty());
    EXPECT_FALSE(readFromPlistFile(folder_.path()));
    EXPECT_EQ(log_.lines().size(), 1U);
}

}  // namespace
