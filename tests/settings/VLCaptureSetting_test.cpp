#include <vorla/VLCaptureSetting.h>

#include <gtest/gtest.h>

#include <vorla/VLCaptureDefaultSetting.h>
#include "platform/base/UserDefaults.h"
#include "platform/base/files.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using Value = vorla::UserDefaults::Value;

class CaptureSetting : public testing::Test {
 protected:
    vorla::test::TemporaryFolder folder_;
    vorla::UserDefaults defaults_{folder_ / "settings.json"};
    VLCaptureDefaultSetting fallbacks_;
    VLCaptureSetting setting_{defaults_, fallbacks_};

    /// What the next start of the program would find.
    std::optional<Value> onDisk(std::string_view key) {
        return vorla::UserDefaults(folder_ / "settings.json").objectForKey(key);
    }
};

TEST_F(CaptureSetting, FirstReadFixesTheDefaultForTheUser) {
    EXPECT_TRUE(setting_.isPlaySound());
    EXPECT_TRUE(setting_.isHighResolution());
    EXPECT_TRUE(setting_.isRunAlone());
    EXPECT_EQ(setting_.fileType(), 4U);
    EXPECT_EQ(setting_.lastSavePath(), vorla::desktopDirectory());
    EXPECT_EQ(onDisk("VLCaptureSettingKeyPlaySound"), Value(true));
    EXPECT_EQ(onDisk("VLCaptureSettingKeyHighResolution"), Value(true));
    EXPECT_EQ(onDisk("settingkeyrunalone"), Value(true));
    EXPECT_EQ(onDisk("VLCaptureSettingKeyFileType"), Value(int64_t{4}));
    EXPECT_EQ(onDisk("VLCaptureSettingLastSavePath"), Value(vorla::desktopDirectory()));

    fallbacks_.setDefaultValueOfFileType(VLBitmapFileTypeJPEG);
    fallbacks_.setDefaultValueOfSavePath("/elsewhere");
    EXPECT_EQ(setting_.fileType(), 4U);
    EXPECT_EQ(setting_.lastSavePath(), vorla::desktopDirectory());
}

TEST_F(CaptureSetting, ChannelAndThemeNameAreNotFixedByReading) {
    EXPECT_EQ(setting_.channel(), "VorlaSDK");
    EXPECT_EQ(setting_.themeName(), "default");
    EXPECT_FALSE(onDisk("settingkeychannel"));
    EXPECT_FALSE(onDisk("VLCaptureSettingKeyThemeName"));
    fallbacks_.setDefaultValueOfChannel("store");
    EXPECT_EQ(setting_.channel(), "store");
}

TEST_F(CaptureSetting, SetValuesSurviveTheProcess) {
    setting_.setPlaySound(false);
    setting_.setHighResolution(false);
    setting_.setRunAlone(false);
    setting_.setFileType(VLBitmapFileTypeTIFF);
    setting_.setLastSavePath("/pictures/\xC3\xA9t\xC3\xA9");
    setting_.setChannel("store");
    setting_.setThemeName("dark");

    vorla::UserDefaults reopened(folder_ / "settings.json");
    VLCaptureSetting next(reopened, fallbacks_);
    EXPECT_FALSE(next.isPlaySound());
    EXPECT_FALSE(next.isHighResolution());
    EXPECT_FALSE(next.isRunAlone());
    EXPECT_EQ(next.fileType(), 0U);
    EXPECT_EQ(next.lastSavePath(), "/pictures/\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(next.channel(), "store");
    EXPECT_EQ(next.themeName(), "dark");
}

TEST_F(CaptureSetting, ZeroDefaultsCountAsNotSet) {
    fallbacks_.setDefaultValueOfPlaySound(false);
    fallbacks_.setDefaultValueOfResolution(false);
    fallbacks_.setDefaultValueOfRunAlone(false);
    fallbacks_.setDefaultValueOfFileType(0);
    EXPECT_TRUE(setting_.defaultValueOfPlaySound());
    EXPECT_TRUE(setting_.defaultValueOfResolution());
    EXPECT_TRUE(setting_.defaultValueOfRunAlone());
    EXPECT_EQ(setting_.defaultValueOfFileType(), 4U);
}

TEST_F(CaptureSetting, FileNamePrefixIsTakenOnceAndNeverStored) {
    fallbacks_.setDefaultValueOfFileNamePrefix("Shot");
    EXPECT_EQ(setting_.fileNamePrefix(), "Shot");
    fallbacks_.setDefaultValueOfFileNamePrefix("Later");
    EXPECT_EQ(setting_.fileNamePrefix(), "Shot");
    setting_.setFileNamePrefix("Own");
    EXPECT_EQ(setting_.fileNamePrefix(), "Own");
    EXPECT_FALSE(vorla::readFile(folder_ / "settings.json"));
}

TEST_F(CaptureSetting, StoredValuesOfOtherKindsAreReadAsFarAsTheyMakeSense) {
    const struct {
        const char* name;
        Value stored;
        bool asBool;
        uint64_t asType;
    } rows[] = {
        {"zero", int64_t{0}, false, 0},
        {"number", int64_t{3}, true, 3},
        {"flag", true, true, 1},
        {"real", 2.9, true, 2},
        {"huge real", 1e300, true, 4},
        {"text", std::string("no"), true, 4},
        {"negative", int64_t{-1}, true, UINT64_MAX},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        defaults_.setObject(VLCaptureSettingKeyPlaySound, row.stored);
        defaults_.setObject(VLCaptureSettingKeyFileType, row.stored);
        EXPECT_EQ(setting_.isPlaySound(), row.asBool);
        EXPECT_EQ(setting_.fileType(), row.asType);
        EXPECT_EQ(defaults_.objectForKey(VLCaptureSettingKeyFileType), row.stored);
    }
    defaults_.setObject(VLCaptureSettingLastSavePath, int64_t{5});
    EXPECT_EQ(setting_.lastSavePath(), vorla::desktopDirectory());
    EXPECT_EQ(defaults_.objectForKey(VLCaptureSettingLastSavePath), Value(int64_t{5}));
}

}  // namespace
