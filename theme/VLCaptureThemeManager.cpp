#include "theme/VLCaptureThemeManager.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include <vorla/VLCaptureSetting.h>
#include "platform/base/Bundle.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/VLLog.h"
#include "platform/base/raii.h"
#include "theme/HexColor.h"
#include "theme/ThemeFile.h"

using nlohmann::json;

// The macro works outside of any namespace only.
static void addBuiltInTheme() {
    Q_INIT_RESOURCE(vorla_theme);
}

namespace {

std::string themeOfSupplyID(const std::string& supplyID) {
    if (supplyID == "4000") return "Tern-theme";
    if (supplyID == "3000") return "Ibis-theme";
    if (supplyID == "1000" || supplyID == "2000") return "Vorla-theme";
    return "default";
}

/// Beyond every screen; what is computed from such points still fits into whole numbers.
constexpr double farthest = 1e6;

double numberOf(const json& value) {
    return std::clamp(value.get<double>(), -farthest, farthest);
}

double numberOf(const json& object, const char* member, double missing = 0.0) {
    const auto found = object.find(member);
    return found != object.end() && found->is_number() ? numberOf(*found) : missing;
}

std::string stringOf(const json& object, const char* member) {
    const auto found = object.find(member);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

float fraction(double value) {
    return static_cast<float>(std::clamp(value, 0.0, 1.0));
}

std::string themesPath() {
    return vorla::Bundle::framework().resourcePath() + "/ThemeResources/";
}

bool isFolder(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

/// The default theme that is compiled in: without resources the screen would freeze with nothing
/// drawn on it.
constexpr const char* builtInTheme = ":/vorla/default";

}  // namespace

QFont VLThemedFont::font() const {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    // A family that is not installed ("Helvetica" seldom is) becomes the desktop's substitute, and
    // Chinese text gets Chinese letter forms, not the Japanese ones that come first by default.
    const QString family = name.isEmpty() ? font.family() : name;
    font.setFamilies({QFontInfo(QFont(family)).family(), QStringLiteral("Noto Sans CJK SC")});
    if (size > 0.0) font.setPixelSize(std::max(1, static_cast<int>(std::lround(size))));
    return font;
}

VLCaptureThemeManager::VLCaptureThemeManager() {
    addBuiltInTheme();
    setupCurrentTheme();
}

VLCaptureThemeManager::~VLCaptureThemeManager() = default;

VLCaptureThemeManager& VLCaptureThemeManager::sharedInstance() {
    static vorla::NoDestructor<VLCaptureThemeManager> instance;
    return *instance;
}

const std::vector<std::string>& VLCaptureThemeManager::nameArrayOfAvailableThemes() {
    static const std::vector<std::string> names = {"default", "Tern-theme", "Ibis-theme",
                                                   "Vorla-theme"};
    return names;
}

bool VLCaptureThemeManager::isVorlaTheme() const {
    return themeName_ == "Vorla-theme";
}

std::string VLCaptureThemeManager::themePathWithThemeName(const std::string& themeName) {
    return themesPath() + themeName;
}

void VLCaptureThemeManager::setupCurrentTheme() {
    themeName_ = VLCaptureSetting::sharedInstance().themeName();
    themePath_ = themePathWithThemeName(themeName_);
}

void VLCaptureThemeManager::resetTheme() {
    const std::string supplyID = vorla::Bundle::framework().infoString("SupplyID");
    if (!changeThemeTo(themeOfSupplyID(supplyID))) setupCurrentTheme();
}

bool VLCaptureThemeManager::changeThemeTo(const std::string& themeName) {
    VLLog("<VLCaptureThemeManager> %s themeName:%s", __func__, themeName.c_str());
    const auto& names = nameArrayOfAvailableThemes();
    if (std::ranges::find(names, themeName) == names.end() ||
        !isFolder(themePathWithThemeName(themeName)))
        return false;
    // The store would write the same value again at every session's start.
    if (VLCaptureSetting::sharedInstance().themeName() != themeName)
        VLCaptureSetting::sharedInstance().setThemeName(themeName);
    setupCurrentTheme();
    vorla::NotificationCenter::defaultCenter().post(VLCaptureNotificationForChangeTheme);
    return true;
}

const vorla::ThemeFile& VLCaptureThemeManager::file() const {
    const bool found = isFolder(themePath_) || isFolder(themesPath());
    const std::string folder = found ? themePath_ : builtInTheme;
    if (file_ && file_->folder() == folder && file_->isCurrent()) return *file_;
    file_ = std::make_unique<vorla::ThemeFile>(folder);
    if (!found)
        VLLogError(
            "there are no themes in %s: drawing with the built-in one; VORLA_RESOURCES names "
            "the folder of the resources",
            themesPath().c_str());
    return *file_;
}

json VLCaptureThemeManager::objectWithKey(const std::string& key) const {
    return key.empty() ? json() : file().value(key);
}

QColor VLCaptureThemeManager::themedColorWithKey(const std::string& key) const {
    const json value = objectWithKey(key);
    if (!value.is_object() || value.empty()) return {};
    const double alpha = numberOf(value, "A", 1.0);
    if (value.contains("Hex"))
        return hx_colorWithHexString(QString::fromStdString(stringOf(value, "Hex")), alpha);
    return QColor::fromRgbF(fraction(numberOf(value, "R")), fraction(numberOf(value, "G")),
                            fraction(numberOf(value, "B")), fraction(alpha));
}

std::optional<VLThemedFont> VLCaptureThemeManager::themedFontWithKey(const std::string& key) const {
    const json value = objectWithKey(key);
    if (!value.is_object() || value.empty()) return std::nullopt;
    VLThemedFont font;
    // The capitalised member says that there is a size, the other one how large it is.
    if (value.contains("Size")) font.size = numberOf(value, "size");
    font.name = QString::fromStdString(stringOf(value, "Name"));
    return font;
}

QImage VLCaptureThemeManager::themedImageWithKey(const std::string& key, double scale) const {
    const json value = objectWithKey(key);
    if (!value.is_string() || value.get_ref<const std::string&>().empty()) return {};
    if (scale <= 0.0) scale = qGuiApp ? qGuiApp->devicePixelRatio() : 1.0;
    return file().picture(value.get<std::string>(), scale);
}

VLRect VLCaptureThemeManager::themedFrameWithKey(const std::string& key) const {
    const json value = objectWithKey(key);
    if (!value.is_object()) return {};
    return {numberOf(value, "X"), numberOf(value, "Y"), numberOf(value, "W"), numberOf(value, "H")};
}

VLSize VLCaptureThemeManager::themedMarginWithKey(const std::string& key) const {
    const json value = objectWithKey(key);
    if (!value.is_object()) return {};
    return {numberOf(value, "L"), numberOf(value, "B")};
}

VLSize VLCaptureThemeManager::themedSizeWithKey(const std::string& key) const {
    const json value = objectWithKey(key);
    if (!value.is_object()) return {};
    return {numberOf(value, "W"), numberOf(value, "H")};
}

float VLCaptureThemeManager::themedWeightWithKey(const std::string& key) const {
    const json value = objectWithKey(key);
    return value.is_number() ? static_cast<float>(numberOf(value)) : 0.0F;
}

bool VLCaptureThemeManager::themedEnableWithKey(const std::string& key) const {
    const json value = objectWithKey(key);
    if (value.is_boolean()) return value.get<bool>();
    return value.is_number() && value.get<double>() != 0.0;
}
