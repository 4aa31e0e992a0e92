#pragma once

#include <vorla/export.h>

#include <cstdint>
#include <memory>
#include <string>

/// What the settings are when the user has chosen nothing. A host fills this in before its first
/// capture to give its product defaults of its own.
///
/// A value that is false, 0 or empty counts as not set, and its getter returns the built-in value:
/// a host can therefore not make false, or TIFF, the default. Strings are UTF-8. Any thread.
class VL_EXPORT VLCaptureDefaultSetting {
 public:
    static VLCaptureDefaultSetting& sharedInstance();

    VLCaptureDefaultSetting();
    ~VLCaptureDefaultSetting();
    VLCaptureDefaultSetting(const VLCaptureDefaultSetting&) = delete;
    VLCaptureDefaultSetting& operator=(const VLCaptureDefaultSetting&) = delete;

    /// Built in: true.
    [[nodiscard]] bool defaultValueOfPlaySound() const;
    void setDefaultValueOfPlaySound(bool value);

    /// Whether pictures keep the screen's full resolution. Built in: true.
    [[nodiscard]] bool defaultValueOfResolution() const;
    void setDefaultValueOfResolution(bool value);

    /// Built in: true.
    [[nodiscard]] bool defaultValueOfRunAlone() const;
    void setDefaultValueOfRunAlone(bool value);

    /// A `VLBitmapFileType`. Built in: PNG.
    [[nodiscard]] uint64_t defaultValueOfFileType() const;
    void setDefaultValueOfFileType(uint64_t value);

    /// An absolute path. Built in: the user's desktop directory.
    [[nodiscard]] std::string defaultValueOfSavePath() const;
    void setDefaultValueOfSavePath(std::string value);

    /// Built in: "Vorla".
    [[nodiscard]] std::string defaultValueOfFileNamePrefix() const;
    void setDefaultValueOfFileNamePrefix(std::string value);

    /// Built in: "VorlaSDK".
    [[nodiscard]] std::string defaultValueOfChannel() const;
    void setDefaultValueOfChannel(std::string value);

 private:
    struct Values;
    std::unique_ptr<Values> values_;
};
