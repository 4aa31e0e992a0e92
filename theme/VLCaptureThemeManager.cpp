#include "theme/VLCaptureThemeManager.h"

#include <sys/stat.h>

#include <QFontDatabase>
#include <QFontInfo>
#include <QGuiApplication>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "platform/base/Bundle.h"
#include "platform/base/NotificationCenter.h"
#include "platform/base/VLLog.h"
#include "platform/base/files.h"
#include "settings/VLCaptureSetting.h"
#include "theme/HexColor.h"

using nlohmann::json;

namespace {

std::string themeOfSupplyID(const std::string& supplyID) {
    if (supplyID == "4000") return "Tern-theme";
    if (supplyID == "3000") return "Ibis-theme";
    if (supplyID == "1000" || supplyID == "2000") return "Vorla-theme";
    return "default";
}

double numberOf(const json& object, const char* member, double missing = 0.0) {
    const auto found = object.find(member);
    return found != object.end() && found->is_number() ? found->get<double>() : missing;
}

std::string stringOf(const json& object, const char* member) {
    const auto found = object.find(member);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

float fraction(double value) {
    return static_cast<float>(std::clamp(value, 0.0, 1.0));
}

/// The file of an image resource: the name as it stands, or with one of the known endings.
std::string imageFile(const std::string& folder, const std::string& name) {
    for (const char* ending : {"", ".svg", ".png"}) {
        std::string path = folder + "/" + name + ending;
        std::error_code error;
        if (std::filesystem::is_regular_file(path, error)) return path;
    }
    return {};
}

/// Points a side; a drawing that claims more is broken and would only eat memory.
constexpr int largestDrawing = 4096;

QImage drawingFromFile(const std::string& path, double scale) {
    QSvgRenderer drawing(QString::fromStdString(path));
    if (!drawing.isValid() || drawing.defaultSize().isEmpty()) return {};
    const QSizeF points = drawing.defaultSize();
    if (points.width() > largestDrawing || points.height() > largestDrawing) return {};
    QImage image((points * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    image.setDevicePixelRatio(scale);
    return image;
}

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

/// The parsed file together with what tells that it has changed since.
struct VLCaptureThemeManager::ParsedFile {
    std::string path;
    ino_t inode = 0;
    off_t size = -1;
    timespec modified = {};
    json value;

    [[nodiscard]] bool isStillThat(const std::string& file, const struct stat& facts) const {
        return path == file && inode == facts.st_ino && size == facts.st_size &&
               modified.tv_sec == facts.st_mtim.tv_sec && modified.tv_nsec == facts.st_mtim.tv_nsec;
    }
};

VLCaptureThemeManager::VLCaptureThemeManager() : parsed_(std::make_unique<ParsedFile>()) {
    setupCurrentTheme();
}

VLCaptureThemeManager::~VLCaptureThemeManager() = default;

VLCaptureThemeManager& VLCaptureThemeManager::sharedInstance() {
    static VLCaptureThemeManager instance;
    return instance;
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
    return vorla::Bundle::framework().resourcePath() + "/ThemeResources/" + themeName;
}

void VLCaptureThemeManager::setupCurrentTheme() {
    themeName_ = VLCaptureSetting::sharedInstance().themeName();
    themePath_ = themePathWithThemeName(themeName_);
}

void VLCaptureThemeManager::resetTheme() {
    changeThemeTo(themeOfSupplyID(vorla::Bundle::framework().infoString("SupplyID")));
}

bool VLCaptureThemeManager::changeThemeTo(const std::string& themeName) {
    VLLog("<VLCaptureThemeManager> %s themeName:%s", __func__, themeName.c_str());
    const auto& names = nameArrayOfAvailableThemes();
    std::error_code error;
    if (std::ranges::find(names, themeName) == names.end() ||
        !std::filesystem::is_directory(themePathWithThemeName(themeName), error))
        return false;
    // The store would write the same value again at every session's start.
    if (VLCaptureSetting::sharedInstance().themeName() != themeName)
        VLCaptureSetting::sharedInstance().setThemeName(themeName);
    setupCurrentTheme();
    vorla::NotificationCenter::defaultCenter().post(VLCaptureNotificationForChangeTheme);
    return true;
}

const json& VLCaptureThemeManager::configuration() const {
    const std::string path = themePath_ + "/themeConfigue.json";
    struct stat facts = {};
    static const json none = json::object();
    if (::stat(path.c_str(), &facts) != 0) return none;
    if (!parsed_->isStillThat(path, facts)) {
        *parsed_ = {path, facts.st_ino, facts.st_size, facts.st_mtim,
                    json::parse(vorla::readFile(path).value_or(""), nullptr, false)};
        if (!parsed_->value.is_object()) {
            VLLogError("the theme file %s is not a JSON object: its look is missing", path.c_str());
            parsed_->value = json::object();
        }
    }
    return parsed_->value;
}

json VLCaptureThemeManager::objectWithKey(const std::string& key) const {
    if (key.empty()) return {};
    const json& values = configuration();
    const auto found = values.find(key);
    return found == values.end() ? json() : *found;
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
    const std::string path = imageFile(themePath_, value.get<std::string>());
    if (path.empty()) return {};
    if (scale <= 0.0) scale = qGuiApp ? qGuiApp->devicePixelRatio() : 1.0;
    if (path.ends_with(".svg")) return drawingFromFile(path, scale);
    return QImage(QString::fromStdString(path));
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
    return value.is_number() ? value.get<float>() : 0.0F;
}

bool VLCaptureThemeManager::themedEnableWithKey(const std::string& key) const {
    const json value = objectWithKey(key);
    if (value.is_boolean()) return value.get<bool>();
    return value.is_number() && value.get<double>() != 0.0;
}
