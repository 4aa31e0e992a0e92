#include "toolbar/popover/ToolbarConfiguration.h"

#include <QRegularExpression>
#include <string>

#include "theme/HexColor.h"
#include "theme/VLCaptureThemeManager.h"
#include "toolbar/popover/VLPopoverType.h"

using vorla::UserDefaults;

namespace {

struct Keys {
    const char* dictionary;
    const char* width;
    const char* color;
    const char* fontSize;
};

const Keys& keysOfCurrentTheme() {
    static constexpr Keys plain{"VLToolbarConfigurationWithGraphType_", "toolbarLineWidth",
                                "toolbarLineColor", "toolbarFontSize"};
    static constexpr Keys tern{
        "VLToolbarConfigurationForTernWithGraphType_", "VLToolbarConfigurationWidthForTern",
        "VLToolbarConfigurationColorForTern", "VLToolbarConfigurationFontSizeForTern"};
    return VLCaptureThemeManager::sharedInstance().themeName() == "Tern-theme" ? tern : plain;
}

constexpr double largestLength = 500.0;

/// No number, and a number that no picker could have stored, count as never chosen.
std::optional<uint64_t> lengthOf(const UserDefaults::Dictionary& stored, const char* key) {
    const auto found = stored.find(key);
    if (found == stored.end()) return std::nullopt;
    const auto* whole = std::get_if<int64_t>(&found->second);
    const auto* real = std::get_if<double>(&found->second);
    const double number = whole ? static_cast<double>(*whole) : real ? *real : 0.0;
    if (!(number >= 1.0 && number <= largestLength)) return std::nullopt;
    return static_cast<uint64_t>(number);
}

QColor colorOf(const UserDefaults::Dictionary& stored, const char* key) {
    const auto found = stored.find(key);
    if (found == stored.end()) return {};
    const auto* text = std::get_if<std::string>(&found->second);
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("#([0-9a-fA-F]{2})?[0-9a-fA-F]{6}")));
    if (!text) return {};
    const QString written = QString::fromStdString(*text);
    return form.match(written).hasMatch() ? hx_colorWithHexString(written) : QColor();
}

std::string textOf(const QColor& color) {
    return color.name(color.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb).toStdString();
}

}  // namespace

ToolAttributes ToolbarConfiguration::attributesOfType(int64_t graphType) const {
    const Keys& keys = keysOfCurrentTheme();
    const auto value = defaults_.objectForKey(keys.dictionary + std::to_string(graphType));
    const auto* stored = value ? std::get_if<UserDefaults::Dictionary>(&*value) : nullptr;
    if (!stored) return {};
    const uint64_t pickers = popoverTypeByGraphType(graphType);
    ToolAttributes attributes;
    if (pickers & VLPopoverTypeLineWidth) attributes.width = lengthOf(*stored, keys.width);
    if (pickers & VLPopoverTypeLineColor) attributes.color = colorOf(*stored, keys.color);
    if (pickers & VLPopoverTypeFontSize) attributes.fontSize = lengthOf(*stored, keys.fontSize);
    return attributes;
}

void ToolbarConfiguration::saveAttributes(const ToolAttributes& attributes, int64_t graphType) {
    const Keys& keys = keysOfCurrentTheme();
    const uint64_t pickers = popoverTypeByGraphType(graphType);
    UserDefaults::Dictionary stored;
    if (pickers & VLPopoverTypeLineWidth && attributes.width)
        stored.emplace(keys.width, static_cast<int64_t>(*attributes.width));
    if (pickers & VLPopoverTypeLineColor && attributes.color.isValid())
        stored.emplace(keys.color, textOf(attributes.color));
    if (pickers & VLPopoverTypeFontSize && attributes.fontSize)
        stored.emplace(keys.fontSize, static_cast<int64_t>(*attributes.fontSize));
    if (stored.empty()) return;
    defaults_.setObject(keys.dictionary + std::to_string(graphType), std::move(stored));
    defaults_.synchronize();
}
