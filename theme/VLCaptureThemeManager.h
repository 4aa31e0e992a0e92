#pragma once

#include <vorla/VLNotifications.h>

#include <QColor>
#include <QFont>
#include <QImage>
#include <QString>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/geometry.h"

namespace vorla {
class ThemeFile;
template <typename T>
class NoDestructor;
}  // namespace vorla

/// A font as a theme names it. The size is in points of the screen and may be 0.
struct VLThemedFont {
    QString name;
    double size = 14.0;
    /// The font to draw with: the named one, or the system font where it is not installed.
    [[nodiscard]] QFont font() const;
};

/// Every colour, size, frame, font and image of the interface, by key from the current theme.
///
/// A theme is a directory of the framework's resources with images and the file
/// "themeConfigue.json" (see ThemeFile). A lookup always answers from the file as it is now; what
/// is missing or broken returns no colour, no image or zero, and the interface goes without.
/// Where there are no themes at all, the default one that is compiled in answers. Main thread.
class VLCaptureThemeManager {
 public:
    static VLCaptureThemeManager& sharedInstance();
    ~VLCaptureThemeManager();
    VLCaptureThemeManager(const VLCaptureThemeManager&) = delete;
    VLCaptureThemeManager& operator=(const VLCaptureThemeManager&) = delete;

    [[nodiscard]] const std::string& themeName() const { return themeName_; }
    [[nodiscard]] const std::string& themePath() const { return themePath_; }
    [[nodiscard]] static const std::vector<std::string>& nameArrayOfAvailableThemes();
    [[nodiscard]] bool isVorlaTheme() const;

    /// Takes the theme of the host product's line, named by "SupplyID", whatever the setting says.
    void resetTheme();
    /// Stores the theme as the user's, and posts the change. False, with nothing changed, for a
    /// name that is not available or has no directory.
    bool changeThemeTo(const std::string& themeName);
    void setupCurrentTheme();
    [[nodiscard]] static std::string themePathWithThemeName(const std::string& themeName);

    /// The value with its colours in place; null when there is none.
    [[nodiscard]] nlohmann::json objectWithKey(const std::string& key) const;

    /// An invalid colour when there is none: the drawing in question does not take place.
    [[nodiscard]] QColor themedColorWithKey(const std::string& key) const;
    [[nodiscard]] std::optional<VLThemedFont> themedFontWithKey(const std::string& key) const;
    /// The image with its size in points and `scale` device pixels a point (the highest scale of
    /// any screen when 0); null when there is none.
    [[nodiscard]] QImage themedImageWithKey(const std::string& key, double scale = 0.0) const;
    [[nodiscard]] VLRect themedFrameWithKey(const std::string& key) const;
    /// The left margin as width and the bottom margin as height.
    [[nodiscard]] VLSize themedMarginWithKey(const std::string& key) const;
    [[nodiscard]] VLSize themedSizeWithKey(const std::string& key) const;
    [[nodiscard]] float themedWeightWithKey(const std::string& key) const;
    [[nodiscard]] bool themedEnableWithKey(const std::string& key) const;

 private:
    VLCaptureThemeManager();

    template <typename T>
    friend class vorla::NoDestructor;
    [[nodiscard]] const vorla::ThemeFile& file() const;

    std::string themeName_;
    std::string themePath_;
    mutable std::unique_ptr<vorla::ThemeFile> file_;
};

/// Images of the current theme by name.
class VLImage {
 public:
    static QImage imageNamed(const std::string& key) {
        return VLCaptureThemeManager::sharedInstance().themedImageWithKey(key);
    }
};
