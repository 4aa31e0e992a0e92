#include <gtest/gtest.h>

#include <QGuiApplication>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <numbers>
#include <set>

#include <vorla/VLCaptureSetting.h>
#include "platform/base/Bundle.h"
#include "theme/VLCaptureThemeManager.h"

// The shipped themes and texts, read as the interface reads them.

namespace {

std::vector<std::string> product(const std::vector<std::string>& stems,
                                 const std::vector<std::string>& endings) {
    std::vector<std::string> keys;
    for (const auto& stem : stems)
        for (const auto& ending : endings) keys.push_back(stem + ending);
    return keys;
}

const std::vector<std::string> tools = product(
    {"VLEditGraphType"}, {"RoundRect", "Oval", "Arrow", "Curve", "MosaicPen", "Text", "Tag"});
const std::vector<std::string> functions =
    product({"VLToolbarFunctionButtonType"}, {"Undo", "Save", "Cancel", "OK"});
const std::vector<std::string> pictures = [] {
    std::vector<std::string> all = {
        "move_cursor",        "sightingTelescopeCursor",    "resize_cursor_0",
        "resize_cursor_45",   "resize_cursor_90",           "resize_cursor_135",
        "VLPopoverLogo",      "VLPopoverPullDownArrow",     "VLSwitchPullDown",
        "VLSwitchPullUp",     "vlswitch_zh-Hans",           "VLToolbarSeperateLine",
        "vlswitchFirstFrame", "vlswitchFirstFrame_zh-Hans", "vlswitch"};
    for (const auto& keys :
         {product(tools, {"_normal", "_hover", "_pressed", "_selected", "_diabled"}),
          product(functions, {"_normal", "_hover", "_pressed", "_selected", "_disabled"}),
          product({"rotate_cursor_"}, {"0", "45", "90", "135", "180", "225", "270", "315"}),
          product({"VLToolbarLineWidth3px", "VLToolbarLineWidth6px", "VLToolbarLineWidth9px"},
                  {"_normal", "_selected"}),
          product({"logoIntroduce"}, {"_normal", "_hover"})})
        all.insert(all.end(), keys.begin(), keys.end());
    return all;
}();

class Themes : public testing::TestWithParam<std::string> {
 protected:
    Themes() { EXPECT_TRUE(theme_.changeThemeTo(GetParam())); }
    VLCaptureThemeManager& theme_ = VLCaptureThemeManager::sharedInstance();

    [[nodiscard]] QColor colour(const std::string& key) const {
        return theme_.themedColorWithKey(key);
    }
    void expectInside(const std::vector<std::string>& frames, VLSize panel) const {
        for (size_t index = 0; index < frames.size(); ++index) {
            const VLRect frame = theme_.themedFrameWithKey(frames[index]);
            EXPECT_FALSE(frame.isEmpty()) << frames[index];
            EXPECT_LE(frame.maxX(), panel.width) << frames[index];
            EXPECT_LE(frame.maxY(), panel.height) << frames[index];
            for (size_t other = 0; other < index; ++other)
                EXPECT_TRUE(frame.intersection(theme_.themedFrameWithKey(frames[other])).isEmpty())
                    << frames[index] << " lies on " << frames[other];
        }
    }
};

/// The relative luminance of WCAG 2.
double luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

bool hasInk(const QImage& image) {
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 20) return true;
    return false;
}

TEST_P(Themes, HaveEveryKeyInItsForm) {
    for (const char* key : {"VLCaptureSizeinfoView_BackgroundColor",
                            "VLCaptureSizeinfoView_BorderColor",
                            "VLCaptureSizeinfoView_FontColor",
                            "VLCaptureView_BackgroundColor",
                            "VLCaptureView_ControlPoint_FillColor",
                            "VLCaptureView_ControlPoint_StrokeColor",
                            "VLCaptureView_SelectRect_BorderColor",
                            "VLCaptureView_SelectRect_FillColor",
                            "VLMagnifierBackgroundColor",
                            "VLMagnifierCrossLineColor",
                            "VLMagnifierInfoBackgroundColor",
                            "VLMagnifier_FontColor",
                            "VLPopoverFontSizeBorderColor",
                            "VLPopoverFontSize_FontColor",
                            "VLPopoverLineColorBorderColor",
                            "VLPopoverMenu_BackgroundColor",
                            "VLPopoverMenu_BorderColor",
                            "VLPopoverMenu_HoverColor",
                            "VLPopover_BackgroundColor",
                            "VLToolbarView_BackgroundColor"}) {
        EXPECT_TRUE(colour(key).isValid()) << key;
        EXPECT_EQ(theme_.objectWithKey(key).dump().find('@'), std::string::npos) << key;
    }
    for (const char* key :
         {"VLCaptureSizeinfoView_Size", "VLCaptureView_ControlPoint_Size",
          "VLPopoverFontSizeViewSize", "VLPopoverLineColorViewSize", "VLPopoverLineWidthViewSize",
          "VLPopoverViewArrowSize", "VLPopoverViewSize_FontColor", "VLPopoverViewSize_Logo",
          "VLPopoverViewSize_Width", "VLPopoverViewSize_WidthColor", "VLToolbarPanelSize"})
        EXPECT_FALSE(theme_.themedSizeWithKey(key).isEmpty()) << key;
    for (const char* key : {"VLPopoverFontSizeViewMargin", "VLPopoverLineColorViewMargin",
                            "VLPopoverLineWidthViewMargin"})
        EXPECT_GT(theme_.themedMarginWithKey(key).width, 0.0) << key;
    for (const char* key :
         {"VLCaptureView_ControlPoint_StrokeWidth", "VLCaptureView_SelectRect_BorderWidth",
          "VLPopoverLineWidthButton1Value", "VLPopoverLineWidthButton2Value",
          "VLPopoverLineWidthButton3Value"})
        EXPECT_GT(theme_.themedWeightWithKey(key), 0.0F) << key;
    EXPECT_GT(theme_.themedFontWithKey("VLCaptureSizeinfoView_Font")->size, 8.0);
    // A selection shows its pixels as they are.
    EXPECT_EQ(colour("VLCaptureView_SelectRect_FillColor").alpha(), 0);
}

TEST_P(Themes, DrawEveryPicture) {
    for (const auto& key : pictures) EXPECT_TRUE(hasInk(theme_.themedImageWithKey(key, 1))) << key;
}

TEST_P(Themes, KeepTextLegibleAndLinesVisible) {
    const std::tuple<const char*, const char*, double> pairs[] = {
        {"VLCaptureSizeinfoView_FontColor", "VLCaptureSizeinfoView_BackgroundColor", 4.5},
        {"VLMagnifier_FontColor", "VLMagnifierInfoBackgroundColor", 4.5},
        {"VLPopoverFontSize_FontColor", "VLPopoverMenu_HoverColor", 4.5},
        {"VLCaptureView_SelectRect_BorderColor", "VLCaptureView_BackgroundColor", 3.0}};
    for (const auto& [front, back, least] : pairs) {
        // Light on dark, or dark on light.
        const auto [low, high] = std::minmax({luminance(colour(front)), luminance(colour(back))});
        EXPECT_GE((high + 0.05) / (low + 0.05), least) << front;
    }
}

TEST_P(Themes, FitButtonsIntoTheirPanels) {
    // The toolbar of the Vorla theme has no tools, and only the Tern theme has swatches.
    std::vector<std::string> buttons = product(functions, {"_frame"});
    if (!theme_.isVorlaTheme())
        for (const auto& tool : tools) buttons.push_back(tool + "_frame");
    expectInside(buttons, theme_.themedSizeWithKey("VLToolbarPanelSize"));
    expectInside(product(product({"VLPopoverLineWidthButton"}, {"1", "2", "3"}), {"Frame"}),
                 theme_.themedSizeWithKey("VLPopoverLineWidthViewSize"));
    if (GetParam() == "Tern-theme")
        expectInside(product(product({"VLPopoverLineColorButton"}, {"1", "2", "3", "4", "5", "6"}),
                             {"Frame"}),
                     theme_.themedSizeWithKey("VLPopoverLineColorViewSize"));
}

INSTANTIATE_TEST_SUITE_P(Shipped, Themes,
                         testing::ValuesIn(VLCaptureThemeManager::nameArrayOfAvailableThemes()),
                         [](const auto& row) { return row.param.substr(0, row.param.find('-')); });

TEST(Cursors, PointWhereTheirNamesSay) {
    const auto& theme = VLCaptureThemeManager::sharedInstance();
    const auto isCore = [](QRgb pixel) { return qAlpha(pixel) > 220 && qGray(pixel) < 60; };
    // At scale 4 the middle of the hot pixel lies at 66.
    const auto at = [](const QImage& cursor, double degrees, double distance) {
        const double angle = degrees * std::numbers::pi / 180;
        return cursor.pixel(static_cast<int>(66 + 4 * distance * std::cos(angle)),
                            static_cast<int>(66 - 4 * distance * std::sin(angle)));
    };
    for (int angle = 0; angle < 360; angle += 45) {
        const auto name = std::to_string(angle);
        const QImage rotate = theme.themedImageWithKey("rotate_cursor_" + name, 4);
        EXPECT_TRUE(isCore(at(rotate, angle, 3.5))) << angle;
        EXPECT_EQ(qAlpha(at(rotate, angle + 180, 4.5)), 0) << angle;
        if (angle >= 180) continue;
        const QImage resize = theme.themedImageWithKey("resize_cursor_" + name, 4);
        EXPECT_TRUE(isCore(at(resize, angle, 11)) && isCore(at(resize, angle + 180, 11))) << angle;
        EXPECT_EQ(qAlpha(at(resize, angle + 90, 11)), 0) << angle;
    }
    const QImage cross = theme.themedImageWithKey("sightingTelescopeCursor", 1);
    for (const int offset : {-12, -6, 0, 6, 12})
        EXPECT_TRUE(isCore(cross.pixel(16 + offset, 16)) && isCore(cross.pixel(16, 16 + offset)));
    EXPECT_FALSE(isCore(cross.pixel(22, 17)) || isCore(cross.pixel(15, 22)));
}

TEST(StringTables, HaveTheSameKeysAndNameThePicturesOfTheirLanguage) {
    std::set<std::string> keys[2];
    int language = 0;
    for (const char* name : {"en", "zh-Hans"}) {
        std::ifstream file(std::string(VORLA_RESOURCES) + "/" + name + ".lproj/Localizable.json");
        const auto table = nlohmann::json::parse(file);
        for (const auto& [key, text] : table.items()) keys[language].insert(key);
        for (const char* key : {"vlswitch", "vlswitchFirstFrame"})
            EXPECT_FALSE(VLCaptureThemeManager::sharedInstance()
                             .themedImageWithKey(table.at(key).get<std::string>(), 1)
                             .isNull());
        ++language;
    }
    EXPECT_EQ(keys[0], keys[1]);
}

}  // namespace

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);  // text in a drawing needs its fonts
    vorla::Bundle::framework().setResourcePath(VORLA_RESOURCES);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
