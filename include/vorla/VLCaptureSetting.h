#pragma once

#include <vorla/export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class VLCaptureDefaultSetting;
namespace vorla {
class UserDefaults;
}

/// Keys under which the settings are stored. Never rename: users' choices lie under them.
inline constexpr std::string_view VLCaptureSettingKeyPlaySound = "VLCaptureSettingKeyPlaySound";
inline constexpr std::string_view VLCaptureSettingKeyHighResolution =
    "VLCaptureSettingKeyHighResolution";
inline constexpr std::string_view VLCaptureSettingKeyFileType = "VLCaptureSettingKeyFileType";
inline constexpr std::string_view VLCaptureSettingLastSavePath = "VLCaptureSettingLastSavePath";
inline constexpr std::string_view VLSettingKeyChannel = "settingkeychannel";
inline constexpr std::string_view VLSettingKeyRunAlone = "settingkeyrunalone";
inline constexpr std::string_view VLCaptureSettingKeyThemeName = "VLCaptureSettingKeyThemeName";

/// Image formats as they are stored in `fileType`: never renumber.
enum VLBitmapFileType : uint64_t {
    VLBitmapFileTypeTIFF = 0,
    VLBitmapFileTypeBMP = 1,
    VLBitmapFileTypeGIF = 2,
    VLBitmapFileTypeJPEG = 3,
    VLBitmapFileTypePNG = 4,
    VLBitmapFileTypeJPEG2000 = 5,
};

/// The user's choices, kept in the per-user defaults at once when they are set.
///
/// Reading a setting that is not stored stores its default, so the first read fixes it for this
/// user: a host that changes `VLCaptureDefaultSetting` later changes nothing for them. Channel and
/// theme name are the exceptions, their defaults are never stored. A stored value of a kind that
/// makes no sense for its setting reads as the default and is left alone. Any thread.
class VL_EXPORT VLCaptureSetting {
 public:
    static VLCaptureSetting& sharedInstance();

    /// Settings in another store, for the framework's own use; both must outlive this object.
    VLCaptureSetting(vorla::UserDefaults& defaults, const VLCaptureDefaultSetting& fallbacks);
    ~VLCaptureSetting();
    VLCaptureSetting(const VLCaptureSetting&) = delete;
    VLCaptureSetting& operator=(const VLCaptureSetting&) = delete;

    [[nodiscard]] bool isPlaySound();
    void setPlaySound(bool value);

    /// Whether pictures keep the screen's full resolution instead of one pixel a point.
    [[nodiscard]] bool isHighResolution();
    void setHighResolution(bool value);

    /// A `VLBitmapFileType`; a stored number outside of it is returned as it is.
    [[nodiscard]] uint64_t fileType();
    void setFileType(uint64_t value);

    /// The folder that the user saved to last.
    [[nodiscard]] std::string lastSavePath();
    void setLastSavePath(const std::string& value);

    /// The product's distribution channel. Setting an empty one changes nothing.
    [[nodiscard]] std::string channel();
    void setChannel(const std::string& value);

    [[nodiscard]] bool isRunAlone();
    void setRunAlone(bool value);

    [[nodiscard]] std::string themeName();
    void setThemeName(const std::string& value);

    /// Start of the names of saved files. Not stored: taken from the default at the first read and
    /// kept for the life of the process.
    [[nodiscard]] std::string fileNamePrefix();
    void setFileNamePrefix(std::string value);

    [[nodiscard]] bool defaultValueOfPlaySound() const;
    [[nodiscard]] bool defaultValueOfResolution() const;
    [[nodiscard]] bool defaultValueOfRunAlone() const;
    [[nodiscard]] uint64_t defaultValueOfFileType() const;
    [[nodiscard]] std::string defaultValueOfSavePath() const;
    [[nodiscard]] std::string defaultValueOfFileNamePrefix() const;
    [[nodiscard]] std::string defaultValueOfChannel() const;
    [[nodiscard]] std::string defaultValueOfThemeName() const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};
