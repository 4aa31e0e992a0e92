#include "NEX/NEX/VLNEXUtilities.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <thread>

#include "NEX/NEX/OzuNexEnvironment.h"
#include "platform/base/Bundle.h"
#include "platform/base/files.h"
#include "tests/support/PipedProgram.h"
#include "tests/support/TemporaryFolder.h"

namespace {

class Utilities : public testing::Test {
 protected:
    vorla::test::TemporaryFolder folder_;
    const std::string before_ = vorla::Bundle::framework().resourcePath();

    void install(const nlohmann::json& info) {
        ASSERT_TRUE(vorla::writeFileAtomically(folder_ / "Info.json", info.dump()));
        vorla::Bundle::framework().setResourcePath(folder_.path());
    }
    ~Utilities() override { vorla::Bundle::framework().setResourcePath(before_); }
};

TEST_F(Utilities, VersionsComeFromTheInformationDictionary) {
    constexpr int64_t one = int64_t{1} << 48;
    const struct {
        const char *text, *shortForm, *version;
        int64_t packed;
    } rows[] = {
        {"", "00", "1.0.0", 0},
        {"1", "00", "1", one},
        {"2.10.3", "21", "2.10.3", 2 * one + (int64_t{10} << 32) + (int64_t{3} << 16)},
        {"1.2.3.4.5", "12", "1.2.3.4.5", one + (int64_t{2} << 32) + (int64_t{3} << 16) + 4},
        {"..7", "00", "..7", int64_t{7} << 16},
        {"3b2.x", "3b", "3b2.x", 3 * one},
        {"65537.1", "65", "65537.1", one + (int64_t{1} << 32)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        install({{"CFBundleShortVersionString", row.text}, {"CFBundleVersion", "77"}});
        EXPECT_EQ(VLNEXUtilities::bundleShortVersion(), row.shortForm);
        EXPECT_EQ(VLNEXUtilities::version(), row.version);
        EXPECT_EQ(VLNEXUtilities::clientVersion(), row.packed);
        EXPECT_EQ(VLNEXUtilities::formattedVersion(), std::string(row.version) + "(77)");
    }
    install(nlohmann::json::object());
    EXPECT_EQ(VLNEXUtilities::formattedVersion(), "1.0.0(10560)");
    EXPECT_EQ(VLNEXUtilities::supplyID(), "");
    EXPECT_EQ(VLNEXUtilities::operatingSystem(), "");
    install({{"SupplyID", 4000}, {"CFBundleSupportedPlatforms", {"Linux", "Other"}}});
    EXPECT_EQ(VLNEXUtilities::supplyID(), "4000");
    EXPECT_EQ(VLNEXUtilities::operatingSystem(), "Linux");
    install({{"CFBundleSupportedPlatforms", "Linux"}});
    EXPECT_EQ(VLNEXUtilities::operatingSystem(), "");
}

// In a process of its own, since it is made once in each.
TEST_F(Utilities, UserAgentIsMadeOnce) {
    install({{"CFBundleShortVersionString", "2.10.3"},
             {"CFBundleVersion", "77"},
             {"SupplyID", "4000"},
             {"CFBundleSupportedPlatforms", {"Linux"}}});
    const std::string full = "ua MACVL21_GA/2177&WebKit/10&MAC&NA&NA&4000&9810&Linux&V3";
    vorla::test::PipedProgram host(
        {VORLA_STAT_HOST, "info=" + folder_.path(), "ua", "info=/nonexistent", "ua"});
    EXPECT_EQ(host.nextLine(), full);
    EXPECT_EQ(host.nextLine(), full);
    vorla::test::PipedProgram bare({VORLA_STAT_HOST, "info=/nonexistent", "ua"});
    EXPECT_EQ(bare.nextLine(), "ua MACVL00_GA/0010560&WebKit/10&MAC&NA&NA&0&9810&NA&V3");
    EXPECT_EQ(OzuNexEnvironment::lc(), "3C1D07F5A29B6E4");
}

TEST_F(Utilities, MachineIdentityHidesTheSystemsIdentifier) {
    const std::string machineId = "0123456789abcdef0123456789abcdef";
    ASSERT_TRUE(vorla::writeFileAtomically(folder_ / "id", machineId + "\n"));
    const auto identity = vorla::machineIdentity(folder_ / "id", folder_ / "kept");
    // SHA-256 of "VorlaFramework machine identity 1:" and the identifier, marked as version 4.
    EXPECT_EQ(identity, "309C59D8-3E0F-421B-BBF3-67BC5FEB86A1");
    EXPECT_FALSE(vorla::readFile(folder_ / "kept"));
    ASSERT_TRUE(vorla::writeFileAtomically(folder_ / "id", "1" + machineId.substr(1)));
    EXPECT_NE(vorla::machineIdentity(folder_ / "id", folder_ / "kept"), identity);
}

TEST_F(Utilities, WithoutASystemIdentifierARandomOneIsKept) {
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    const std::string kept = folder_ / "deep/er/kept";
    for (const char* text : {"", "uninitialized\n", "0123", "00000000000000000000000000000000"}) {
        ASSERT_TRUE(vorla::writeFileAtomically(folder_ / "id", text));
        const auto first = vorla::machineIdentity(folder_ / "id", kept);
        ASSERT_TRUE(first);
        EXPECT_TRUE(std::regex_match(*first, form)) << *first;
        EXPECT_EQ(vorla::machineIdentity(folder_ / "missing", kept), first);
    }
    const auto before = vorla::machineIdentity("", kept);
    ASSERT_TRUE(vorla::writeFileAtomically(kept, "damaged"));
    const auto healed = vorla::machineIdentity("", kept);
    EXPECT_NE(healed, before);
    EXPECT_EQ(vorla::machineIdentity("", kept), healed);
    EXPECT_EQ(vorla::machineIdentity("", folder_ / "id/below"), std::nullopt);
}

TEST_F(Utilities, ProcessesAgreeOnARandomIdentity) {
    for (int round = 0; round < 20; ++round) {
        const std::string kept = folder_ / ("kept" + std::to_string(round));
        std::vector<std::optional<std::string>> seen(4);
        {
            std::vector<std::jthread> threads;
            for (auto& one : seen)
                threads.emplace_back([&] { one = vorla::machineIdentity("", kept); });
        }
        for (const auto& one : seen) EXPECT_EQ(one, vorla::machineIdentity("", kept));
    }
}

TEST(OperatingSystemFacts, VersionsAreThreeNumbers) {
    const std::pair<const char*, std::optional<std::string>> rows[] = {
        {"12", "12.0.0"},          {"12.11", "12.11.0"}, {"6.1.0-18-amd64", "6.1.0"},
        {"24.04.1 LTS", "24.4.1"}, {"rolling", {}},      {"", {}},
        {"1.2.3.4", "1.2.3"},      {"5.x.9", "5.0.9"},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(vorla::threeNumbers(text), expected) << text;
    EXPECT_TRUE(vorla::threeNumbers(VLNEXUtilities::operatingSystemVersion()));
}

}  // namespace
