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

/// @file
/// The user's choices.

/// @name Keys
/// Under which the settings are stored. Never rename: users' choices lie under them.
/// @{

/// Of `isPlaySound`.
inline constexpr std::string_view VLCaptureSettingKeyPlaySound = "VLCaptureSettingKeyPlaySound";
/// Of `isHighResolution`.
inline constexpr std::string_view VLCaptureSettingKeyHighResolution =
    "VLCaptureSettingKeyHighResolution";
/// Of `fileType`.
inline constexpr std::string_view VLCaptureSettingKeyFileType = "VLCaptureSettingKeyFileType";
/// Of `lastSavePath`.
inline constexpr std::string_view VLCaptureSettingLastSavePath = "VLCaptureSettingLastSavePath";
/// Of `channel`.
inline constexpr std::string_view VLSettingKeyChannel = "settingkeychannel";
/// Of `isRunAlone`.
inline constexpr std::string_view VLSettingKeyRunAlone = "settingkeyrunalone";
/// Of `themeName`.
inline constexpr std::string_view VLCaptureSettingKeyThemeName = "VLCaptureSettingKeyThemeName";
/// @}

/// Image formats as they are stored in `fileType`: never renumber.
enum VLBitmapFileType : uint64_t {
    VLBitmapFileTypeTIFF = 0,
    VLBitmapFileTypeBMP = 1,
    VLBitmapFileTypeGIF = 2,
    VLBitmapFileTypeJPEG = 3,
    VLBitmapFileTypePNG = 4,
    VLBitmapFileTypeJPEG2000 = 5,
};

/// The user's choices, kept in the per-user defaults (host-guide.md says in which file).
///
/// A getter looks at what is stored, also by another process, at each call. Where nothing is, it
/// returns the product's default, and those of the five settings that say so store it too: the
/// first read then fixes the choice for this user, and a host that changes
/// `VLCaptureDefaultSetting` later changes nothing for them. A stored value of a kind that makes no
/// sense for its setting reads as the default and is left alone.
///
/// A setter stores at once and returns nothing: what cannot be written is logged, and holds for the
/// life of the process. Numbers and texts are stored as they come; texts are UTF-8. A session that
/// runs reads the settings when it delivers. Nothing throws. Any thread.
class VL_EXPORT VLCaptureSetting {
 public:
    /// The settings of the framework itself. Lives as long as the process.
    static VLCaptureSetting& sharedInstance();

    /// Settings in another store, for the framework's own use; both must outlive this object.
    VLCaptureSetting(vorla::UserDefaults& defaults, const VLCaptureDefaultSetting& fallbacks);
    ~VLCaptureSetting();
    VLCaptureSetting(const VLCaptureSetting&) = delete;
    VLCaptureSetting& operator=(const VLCaptureSetting&) = delete;

    /// Whether a sound tells that a picture was delivered. Stores the default.
    [[nodiscard]] bool isPlaySound();
    /// Turns the sound of deliveries on or off, from the next one on.
    void setPlaySound(bool value);

    /// Whether pictures keep the pixels of a screen that has several to a point. Stores the
    /// default.
    [[nodiscard]] bool isHighResolution();
    /// Keeps all pixels of such screens, or reduces pictures to one pixel a point, from the next
    /// delivery on.
    void setHighResolution(bool value);

    /// In which format pictures are saved to files, a `VLBitmapFileType`; a stored number that is
    /// none is returned as it is, and saves as PNG. Stores the default.
    [[nodiscard]] uint64_t fileType();
    /// Sets the format of saved files from the next one on: a `VLBitmapFileType`, which is not
    /// checked.
    void setFileType(uint64_t value);

    /// The folder that the user saved to last, which the next saving begins with. Stores the
    /// default.
    [[nodiscard]] std::string lastSavePath();
    /// Sets that folder: an absolute path, or one that begins with "~". It is looked at when a file
    /// is saved there. The framework sets it each time that the user saves elsewhere.
    void setLastSavePath(const std::string& value);

    /// Through which channel this user got the product, as statistics say.
    [[nodiscard]] std::string channel();
    /// Sets the channel. An empty text changes nothing.
    void setChannel(const std::string& value);

    /// Whether the capture is a product of its own and no part of another one, as statistics say;
    /// it changes nothing else. Stores the default.
    [[nodiscard]] bool isRunAlone();
    /// Says so of this user's product.
    void setRunAlone(bool value);

    /// The name of the theme that the latest session had, "default" before the first one.
    [[nodiscard]] std::string themeName();
    /// Stores a theme's name, which is not checked. Each session chooses its theme by
    /// `VLInfoKeySupplyID` and stores that one's: hosts set the value, not this name.
    void setThemeName(const std::string& value);

    /// What the names of saved files begin with. Not stored: taken from the default at the first
    /// read, and kept for the life of the process.
    [[nodiscard]] std::string fileNamePrefix();
    /// Sets the beginning of file names for the life of the process, from the next file on.
    void setFileNamePrefix(std::string value);

    // What the getters above return where nothing is stored. Nothing is stored by asking.

    /// Of `isPlaySound`; see `VLCaptureDefaultSetting`.
    [[nodiscard]] bool defaultValueOfPlaySound() const;
    /// Of `isHighResolution`; see `VLCaptureDefaultSetting`.
    [[nodiscard]] bool defaultValueOfResolution() const;
    /// Of `isRunAlone`; see `VLCaptureDefaultSetting`.
    [[nodiscard]] bool defaultValueOfRunAlone() const;
    /// Of `fileType`; see `VLCaptureDefaultSetting`.
    [[nodiscard]] uint64_t defaultValueOfFileType() const;
    /// Of `lastSavePath`; see `VLCaptureDefaultSetting`.
    [[nodiscard]] std::string defaultValueOfSavePath() const;
    /// Of `fileNamePrefix`; see `VLCaptureDefaultSetting`.
    [[nodiscard]] std::string defaultValueOfFileNamePrefix() const;
    /// Of `channel`; see `VLCaptureDefaultSetting`.
    [[nodiscard]] std::string defaultValueOfChannel() const;
    /// Of `themeName`: always "default".
    [[nodiscard]] std::string defaultValueOfThemeName() const;

 private:
    struct State;
    std::unique_ptr<State> state_;
};
