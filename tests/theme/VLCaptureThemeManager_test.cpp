#include "theme/VLCaptureThemeManager.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <vorla/VLCaptureSetting.h>
#include "platform/base/NotificationCenter.h"
#include "tests/support/LogRecorder.h"
#include "tests/support/TestResources.h"

namespace {

class ThemeManager : public testing::Test {
 protected:
    vorla::test::LogRecorder log_;
    vorla::test::TestResources resources_;
    VLCaptureThemeManager& theme_ = VLCaptureThemeManager::sharedInstance();

    void SetUp() override { theme_.changeThemeTo("default"); }
    void writeImage(const std::string& name, const std::string& text) const {
        std::ofstream(resources_.theme() + "/" + name) << text;
    }
};

TEST_F(ThemeManager, ReadsEachShapeOfValue) {
    resources_.writeTheme(R"({"hex": {"Hex": "#fff", "A": 0.5, "R": 1}, "rgb": {"R": 0.2, "B": 1},
        "large": {"R": 255, "A": 0.5}, "numberAsHex": {"Hex": 5}, "empty": {}, "text": "x",
        "font": {"Size": 1, "size": 12, "Name": "Helvetica"}, "noSize": {"Name": "Helvetica"},
        "onlySize": {"Size": 12}, "frame": {"X": 1, "Y": 2, "W": 3}, "margin": {"L": 4, "B": 5},
        "size": {"W": 6, "H": 7}, "weight": 1.5, "on": true, "one": 1, "off": false, "zero": 0})");
    const auto rgba = [this](const char* key) {
        const QColor color = theme_.themedColorWithKey(key);
        return color.isValid() ? color.name(QColor::HexArgb).toStdString() : "none";
    };
    const std::pair<const char*, const char*> colours[] = {
        {"hex", "#80ffffff"}, {"rgb", "#ff3300ff"}, {"large", "#80ff0000"}, {"numberAsHex", "none"},
        {"empty", "none"},    {"text", "none"},     {"missing", "none"},    {"", "none"}};
    for (const auto& [key, expected] : colours) EXPECT_EQ(rgba(key), expected) << key;

    EXPECT_EQ(theme_.themedFontWithKey("font")->size, 12.0);
    EXPECT_EQ(theme_.themedFontWithKey("noSize")->size, 14.0);
    EXPECT_EQ(theme_.themedFontWithKey("onlySize")->size, 0.0);
    EXPECT_FALSE(theme_.themedFontWithKey("empty"));
    EXPECT_FALSE(theme_.themedFontWithKey("text"));
    EXPECT_EQ(theme_.themedFontWithKey("font")->font().pixelSize(), 12);

    EXPECT_EQ(theme_.themedFrameWithKey("frame"), (VLRect{1, 2, 3, 0}));
    EXPECT_EQ(theme_.themedFrameWithKey("weight"), VLRect{});
    EXPECT_EQ(theme_.themedMarginWithKey("margin"), (VLSize{4, 5}));
    EXPECT_EQ(theme_.themedSizeWithKey("size"), (VLSize{6, 7}));
    EXPECT_EQ(theme_.themedWeightWithKey("weight"), 1.5F);
    EXPECT_EQ(theme_.themedWeightWithKey("text"), 0.0F);
    for (const char* key : {"on", "one"}) EXPECT_TRUE(theme_.themedEnableWithKey(key)) << key;
    for (const char* key : {"off", "zero", "text", "missing"})
        EXPECT_FALSE(theme_.themedEnableWithKey(key)) << key;
}

TEST_F(ThemeManager, GoesWithoutALookWhenTheFileIsBrokenOrMissing) {
    for (const char* broken : {"", "{", "[1, 2]", "\xff\xfe", "null"}) {
        resources_.writeTheme(broken);
        EXPECT_FALSE(theme_.themedColorWithKey("VLCaptureView_BackgroundColor").isValid());
        EXPECT_EQ(theme_.themedSizeWithKey("VLCaptureSizeinfoView_Size"), VLSize{});
    }
    EXPECT_GT(log_.count("themeConfigue.json"), 0);
    std::filesystem::remove(resources_.theme() + "/themeConfigue.json");
    EXPECT_TRUE(theme_.objectWithKey("VLCaptureView_BackgroundColor").is_null());
    // What is put right is seen at the next lookup.
    resources_.writeTheme(R"({"VLCaptureView_BackgroundColor": {"Hex": "#123456"}})");
    EXPECT_TRUE(theme_.themedColorWithKey("VLCaptureView_BackgroundColor").isValid());
}

TEST_F(ThemeManager, LoadsImagesAtTheScaleAskedFor) {
    resources_.writeTheme(R"({"drawing": "a", "named": "a.svg", "huge": "huge.svg",
        "broken": "broken.svg", "noPicture": "broken.png", "missing": "b", "empty": "", "n": 3})");
    const std::string svg = R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="6">
        <rect width="8" height="6" fill="#0f0"/></svg>)";
    writeImage("a.svg", svg);
    writeImage("huge.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="9e6" height="9e6"/>)");
    writeImage("broken.svg", "<svg");
    writeImage("broken.png", "\x89PNG");
    for (const double scale : {1.0, 2.0, 1.5}) {
        const QImage image = theme_.themedImageWithKey("drawing", scale);
        EXPECT_EQ(image.deviceIndependentSize(), QSizeF(8, 6));
        EXPECT_EQ(image.size(), QSize(int(8 * scale), int(6 * scale)));
        EXPECT_EQ(image.pixel(1, 1), 0xff00ff00U);
    }
    EXPECT_FALSE(theme_.themedImageWithKey("named").isNull());
    for (const char* key : {"huge", "broken", "noPicture", "missing", "empty", "n", "none"})
        EXPECT_TRUE(theme_.themedImageWithKey(key).isNull()) << key;
}

TEST_F(ThemeManager, TakesFromItsBaseWhatAThemeLacks) {
    resources_.writeTheme(R"({"Palette": {"ink": "#010203", "plate": "#040506"}, "mine": "old",
        "Variants": {"lit": {"ink": "@plate@"}}, "light": "a#lit", "plain": "a", "odd": "a#none",
        "front": {"Hex": "@ink@"}, "back": {"Hex": "@plate@"}, "size": {"W": 1, "H": 2}})");
    resources_.writeTheme(R"({"Base": "default", "Palette": {"plate": "#ff0000"}, "mine": "own",
        "size": {"W": 3}})",
                          "Tern-theme");
    writeImage("a.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="6">
        <rect width="8" height="6" fill="@ink@"/></svg>)");
    theme_.changeThemeTo("Tern-theme");
    EXPECT_EQ(theme_.objectWithKey("mine"), "own");
    EXPECT_EQ(theme_.themedSizeWithKey("size"), (VLSize{3, 0}));
    EXPECT_EQ(theme_.themedColorWithKey("front").rgba(), 0xff010203U);
    EXPECT_EQ(theme_.themedColorWithKey("back").rgba(), 0xffff0000U);
    const auto pixel = [this](const char* key) {
        return theme_.themedImageWithKey(key, 1).pixel(4, 3);
    };
    EXPECT_EQ(pixel("plain"), 0xff010203U);
    EXPECT_EQ(pixel("odd"), 0xff010203U);
    EXPECT_EQ(pixel("light"), 0xffff0000U);
    // A picture of its own goes before the base's, and a changed base is seen.
    std::ofstream(resources_.theme("Tern-theme") + "/a.svg")
        << R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="6">
        <rect width="8" height="6" fill="#00ff00"/></svg>)";
    EXPECT_EQ(pixel("light"), 0xff00ff00U);
    resources_.writeTheme(R"({"added": 1})");
    EXPECT_EQ(theme_.themedWeightWithKey("added"), 1.0F);
    for (const char* outside : {"", ".", "..", "../default", "Tern-theme", "none"}) {
        resources_.writeTheme(std::string(R"({"Base": ")") + outside + "\"}", "Tern-theme");
        EXPECT_TRUE(theme_.objectWithKey("added").is_null()) << outside;
    }
}

TEST_F(ThemeManager, DrawsWithTheBuiltInThemeWhereThereAreNoResources) {
    vorla::Bundle::framework().setResourcePath(resources_.theme() + "/nowhere");
    theme_.resetTheme();
    EXPECT_TRUE(theme_.themedColorWithKey("VLCaptureView_BackgroundColor").isValid());
    EXPECT_FALSE(theme_.themedImageWithKey("VLToolbarFunctionButtonTypeOK_normal").isNull());
    EXPECT_EQ(log_.count("VORLA_RESOURCES"), 1);
}

TEST_F(ThemeManager, ChangesOnlyToThemesThatAreThere) {
    std::vector<std::string> heard;
    vorla::NotificationObservers observers;
    observers.observe(VLCaptureNotificationForChangeTheme,
                      [&](const auto&) { heard.push_back(theme_.themeName()); });
    EXPECT_TRUE(theme_.changeThemeTo("Tern-theme"));
    std::filesystem::remove_all(resources_.theme("Ibis-theme"));
    for (const char* name : {"Ibis-theme", "elsewhere", "", "../default"})
        EXPECT_FALSE(theme_.changeThemeTo(name)) << name;
    EXPECT_EQ(theme_.themeName(), "Tern-theme");
    EXPECT_EQ(VLCaptureSetting::sharedInstance().themeName(), "Tern-theme");
    EXPECT_EQ(heard, std::vector<std::string>({"Tern-theme"}));
}

TEST_F(ThemeManager, FollowsTheHostsProductLine) {
    const std::pair<const char*, const char*> cases[] = {
        {"4000", "Tern-theme"},  {"3000", "Ibis-theme"}, {"1000", "Vorla-theme"},
        {"2000", "Vorla-theme"}, {"5000", "default"},    {"", "default"}};
    for (const auto& [supplyID, name] : cases) {
        vorla::Bundle::framework().setInfoString("SupplyID", supplyID);
        theme_.resetTheme();
        EXPECT_EQ(theme_.themeName(), name) << supplyID;
        EXPECT_EQ(theme_.isVorlaTheme(), theme_.themeName() == "Vorla-theme");
    }
}

}  // namespace
