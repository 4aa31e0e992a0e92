#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/base/Bundle.h"
#include "tests/support/TemporaryFolder.h"
#include "theme/VLCaptureThemeManager.h"

namespace vorla::test {

/// A resource directory with a plain theme of known values, in place of the framework's own while
/// it lives.
class TestResources {
 public:
    TestResources() : before_(Bundle::framework().resourcePath()) {
        for (const auto& name : VLCaptureThemeManager::nameArrayOfAvailableThemes())
            std::filesystem::create_directories(theme(name));
        writeTheme(R"({
            "VLCaptureView_BackgroundColor": {"Hex": "#000000", "A": 0.5},
            "VLCaptureView_SelectRect_BorderColor": {"Hex": "#ff0000"},
            "VLCaptureView_SelectRect_BorderWidth": 2,
            "VLCaptureView_ControlPoint_Size": {"W": 8, "H": 8},
            "VLCaptureView_ControlPoint_FillColor": {"Hex": "#00ff00"},
            "VLCaptureView_ControlPoint_StrokeColor": {"Hex": "#ffffff"},
            "VLCaptureView_ControlPoint_StrokeWidth": 1.5,
            "VLCaptureSizeinfoView_Size": {"W": 90, "H": 26},
            "VLCaptureSizeinfoView_BackgroundColor": {"Hex": "#202020"},
            "VLCaptureSizeinfoView_FontColor": {"Hex": "#f0f0f0"},
            "VLMagnifierBackgroundColor": {"Hex": "#303030"},
            "VLMagnifierCrossLineColor": {"Hex": "#0000ff"},
            "VLMagnifier_FontColor": {"Hex": "#f0f0f0"}})");
        Bundle::framework().setResourcePath(folder_.path());
        VLCaptureThemeManager::sharedInstance().setupCurrentTheme();
    }
    ~TestResources() {
        Bundle::framework().setResourcePath(before_);
        VLCaptureThemeManager::sharedInstance().setupCurrentTheme();
    }
    TestResources(const TestResources&) = delete;
    TestResources& operator=(const TestResources&) = delete;

    [[nodiscard]] std::string theme(const std::string& name = "default") const {
        return folder_ / ("ThemeResources/" + name);
    }
    void writeTheme(const std::string& text, const std::string& name = "default") const {
        std::ofstream(theme(name) + "/themeConfigue.json") << text;
    }

 private:
    TemporaryFolder folder_;
    std::string before_;
};

}  // namespace vorla::test
