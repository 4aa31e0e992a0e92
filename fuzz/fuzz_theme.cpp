// A theme's value file with anything in it: every key is asked for in all the ways that the
// interface asks, pictures are drawn, and what comes out is something that can be laid out.

#include <stdlib.h>

#include <QGuiApplication>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "platform/base/VLLog.h"
#include "theme/VLCaptureThemeManager.h"

namespace {

namespace fs = std::filesystem;

/// A folder of resources whose default theme the fuzzer writes, over one that lends a drawing.
class Resources {
 public:
    Resources() {
        vorla::setLogHandler([](std::string_view) {});
        fs::create_directories(theme_);
        fs::create_directories(themes_ / "Tern-theme");
        write(themes_ / "Tern-theme/themeConfigue.json", R"({"Palette": {"ink": "#f00"}})");
        write(themes_ / "Tern-theme/box.svg",
              R"(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9">)"
              R"(<rect width="@size@" height="9" fill="@ink@"/></svg>)");
        ::setenv("VORLA_RESOURCES", root_.c_str(), 1);
        ::setenv("XDG_CONFIG_HOME", root_.c_str(), 1);
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    ~Resources() { fs::remove_all(root_); }

    /// By renaming, so that the theme is always another file than the one before.
    void setTheme(std::string_view values) const {
        write(theme_ / "new", values);
        fs::rename(theme_ / "new", theme_ / "themeConfigue.json");
    }

 private:
    static void write(const fs::path& path, std::string_view text) {
        if (!(std::ofstream(path, std::ios::binary) << text).flush()) std::abort();
    }

    std::string name_ = (fs::temp_directory_path() / "fuzz-theme-XXXXXX").string();
    fs::path root_ = ::mkdtemp(name_.data());
    fs::path themes_ = root_ / "ThemeResources";
    fs::path theme_ = themes_ / "default";
};

void expectPoints(std::initializer_list<double> numbers) {
    for (const double number : numbers)
        if (!(std::abs(number) <= 1e6)) std::abort();
}

void ask(const VLCaptureThemeManager& themes, const std::string& key) {
    const VLRect frame = themes.themedFrameWithKey(key);
    const VLSize size = themes.themedSizeWithKey(key);
    const VLSize margin = themes.themedMarginWithKey(key);
    expectPoints({frame.x, frame.y, frame.width, frame.height, size.width, size.height,
                  margin.width, margin.height, themes.themedWeightWithKey(key)});
    if (const auto font = themes.themedFontWithKey(key)) (void)font->font();
    (void)themes.themedColorWithKey(key);
    (void)themes.themedEnableWithKey(key);
    (void)themes.themedImageWithKey(key, 2.0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static const Resources resources;
    static int argumentCount = 0;
    static const QGuiApplication application(argumentCount, nullptr);
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    resources.setTheme(text);
    const auto& themes = VLCaptureThemeManager::sharedInstance();
    const auto values = nlohmann::json::parse(text, nullptr, false);
    if (values.is_object())
        for (const auto& [key, value] : values.items()) ask(themes, key);
    ask(themes, "no such key");
    return 0;
}
