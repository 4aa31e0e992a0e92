#include "platform/base/Bundle.h"

#include <gtest/gtest.h>

#include "platform/base/files.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using vorla::Bundle;

class BundleTest : public testing::Test {
 protected:
    vorla::test::TemporaryFolder folder_;
    Bundle& bundle_ = Bundle::framework();
    std::string before_ = bundle_.resourcePath();

    void install(const std::string& info) {
        ASSERT_TRUE(vorla::writeFileAtomically(folder_ / "Info.json", info));
        bundle_.setResourcePath(folder_.path());
    }
    ~BundleTest() override { bundle_.setResourcePath(before_); }
};

TEST_F(BundleTest, BrokenOrMissingDictionariesAreEmpty) {
    for (const char* info : {"", "[1]", "{\"a\":", "\xFF\xFE", "null"}) {
        install(info);
        EXPECT_EQ(bundle_.infoString("Version"), "") << info;
    }
    bundle_.setResourcePath("/nonexistent");
    EXPECT_EQ(bundle_.infoString("Version"), "");
    EXPECT_EQ(bundle_.pathForResource("Info.json"), "");
}

TEST_F(BundleTest, TextsFallBackToEnglishAndThenToTheKey) {
    for (const char* language : {"en", "zh-Hans"}) {
        const std::string table = folder_ / (std::string(language) + ".lproj");
        ASSERT_TRUE(vorla::createDirectories(table));
        ASSERT_TRUE(vorla::writeFileAtomically(
            table + "/Localizable.json",
            language[0] == 'e' ? R"({"ok":"OK","cancel":"Cancel"})" : R"({"ok":"\u786e\u5b9a"})"));
    }
    bundle_.setResourcePath(folder_.path());
    const vorla::test::ScopedEnvironment locale(
        {{"LC_ALL", "zh_CN.UTF-8"}, {"LANGUAGE", std::nullopt}});
    EXPECT_EQ(bundle_.localizedString("ok"), "\u786e\u5b9a");
    EXPECT_EQ(bundle_.localizedString("cancel"), "Cancel");
    EXPECT_EQ(bundle_.localizedString("unknown"), "unknown");
}

TEST(PreferredLanguage, FollowsTheLocaleVariables) {
    using Text = std::optional<std::string>;
    const struct {
        Text all, messages, lang, language;
        const char* expected;
    } rows[] = {
        {{}, {}, {}, {}, "en"},
        {{}, {}, "C.UTF-8", "de", "en"},
        {{}, {}, "de_DE.UTF-8", {}, "de"},
        {{}, "fr_FR", "de_DE", {}, "fr"},
        {"", "fr_FR", "de_DE", {}, "fr"},
        {"POSIX", "fr_FR", {}, {}, "en"},
        {{}, {}, "de_DE@euro", "zh_CN:en", "zh-Hans"},
        {{}, {}, "de_DE", "", "de"},
        {{}, {}, "de_DE", "::zh_TW", "zh-Hant"},
        {{}, {}, "de_DE", ":", "de"},
        {{}, {}, "de_DE", "C", "en"},
        {{}, {}, "zh_SG.UTF-8", {}, "zh-Hans"},
        {{}, {}, "zh_HK", {}, "zh-Hant"},
    };
    for (const auto& row : rows) {
        const vorla::test::ScopedEnvironment locale({{"LC_ALL", row.all},
                                                     {"LC_MESSAGES", row.messages},
                                                     {"LANG", row.lang},
                                                     {"LANGUAGE", row.language}});
        EXPECT_EQ(vorla::preferredLanguage(), row.expected)
            << row.lang.value_or("-") << " " << row.language.value_or("-");
    }
}

}  // namespace
