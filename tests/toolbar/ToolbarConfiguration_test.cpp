#include "toolbar/popover/ToolbarConfiguration.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"
#include "theme/VLCaptureThemeManager.h"

using vorla::UserDefaults;

class Configuration : public testing::Test {
 protected:
    ~Configuration() override { VLCaptureThemeManager::sharedInstance().changeThemeTo("default"); }

    vorla::test::LogRecorder log_;
    vorla::test::TemporaryFolder folder_;
    std::string path_ = folder_ / "host.json";
    UserDefaults defaults_{path_};
    ToolbarConfiguration configuration_{defaults_};
};

TEST_F(Configuration, ComesBackInAnotherProcessForTheToolAndThemeAlone) {
    auto& themes = VLCaptureThemeManager::sharedInstance();
    configuration_.saveAttributes({6, QColor(1, 2, 3), 14}, 3);
    configuration_.saveAttributes({6, QColor(1, 2, 3, 4), 96}, 7);
    configuration_.saveAttributes({6, Qt::red, 96}, 0);
    UserDefaults otherDefaults(path_);
    const ToolbarConfiguration other(otherDefaults);
    const ToolAttributes arrow = other.attributesOfType(3);
    EXPECT_EQ(arrow.width, 6U);
    EXPECT_EQ(arrow.color.rgba(), QColor(1, 2, 3).rgba());
    EXPECT_FALSE(arrow.fontSize) << "an arrow has no font";
    EXPECT_EQ(other.attributesOfType(7).fontSize, 96U);
    EXPECT_EQ(other.attributesOfType(7).color.rgba(), QColor(1, 2, 3, 4).rgba());
    EXPECT_FALSE(other.attributesOfType(1).width);
    EXPECT_FALSE(defaults_.objectForKey("VLToolbarConfigurationWithGraphType_0"));
    themes.changeThemeTo("Tern-theme");
    EXPECT_FALSE(other.attributesOfType(3).width);
    configuration_.saveAttributes({9, Qt::white, {}}, 3);
    themes.changeThemeTo("Ibis-theme");
    EXPECT_EQ(other.attributesOfType(3).width, 6U);
    EXPECT_TRUE(defaults_.objectForKey("VLToolbarConfigurationForTernWithGraphType_3"));
}

TEST_F(Configuration, AbsurdEntriesAreNone) {
    const struct {
        const char* stored;
        std::optional<uint64_t> width;
        bool color;
    } rows[] = {
        {R"({"toolbarLineWidth": 500, "toolbarLineColor": "#AbCdEf"})", 500, true},
        {R"({"toolbarLineWidth": 3.7, "toolbarLineColor": "#12345678"})", 3, true},
        {R"({"toolbarLineWidth": 0, "toolbarLineColor": "#12345"})", {}, false},
        {R"({"toolbarLineWidth": 501, "toolbarLineColor": "red"})", {}, false},
        {R"({"toolbarLineWidth": -3, "toolbarLineColor": ""})", {}, false},
        {R"({"toolbarLineWidth": 18446744073709551615, "toolbarLineColor": 7})", {}, false},
        {R"({"toolbarLineWidth": "6", "toolbarLineColor": "#00000g"})", {}, false},
        {R"({"toolbarLineWidth": [6], "toolbarLineColor": {"R": 1}})", {}, false},
        {R"({"toolbarLineWidth": 1e300, "toolbarLineColor": "bplist00\u0000"})", {}, false},
        {R"("6")", {}, false},
        {"[1, 2]", {}, false},
        {"null", {}, false},
    };
    for (const auto& row : rows) {
        std::ofstream(path_) << R"({"VLToolbarConfigurationWithGraphType_1": )" << row.stored
                             << "}";
        UserDefaults defaults(path_);
        const ToolAttributes read = ToolbarConfiguration(defaults).attributesOfType(1);
        EXPECT_EQ(read.width, row.width) << row.stored;
        EXPECT_EQ(read.color.isValid(), row.color) << row.stored;
    }
}
