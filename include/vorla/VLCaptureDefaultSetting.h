#pragma once

#include <vorla/export.h>

#include <cstdint>
#include <memory>
#include <string>

/// What the settings are when the user has chosen nothing. A host fills this in before its first
/// capture to give its product defaults of its own.
///
/// A value that is false, 0 or empty counts as not set, and its getter returns the built-in value:
/// a host can therefore not make false, or TIFF, the default, and setting such a value restores the
/// built-in one. Nothing is stored, checked or refused; texts are UTF-8. A user for whom a setting
/// is stored already (see `VLCaptureSetting`) keeps it. Nothing throws. Any thread.
class VL_EXPORT VLCaptureDefaultSetting {
 public:
    /// The defaults of this process's product. Lives as long as the process.
    static VLCaptureDefaultSetting& sharedInstance();

    /// Defaults of their own, for the framework's use: the built-in ones.
    VLCaptureDefaultSetting();
    ~VLCaptureDefaultSetting();
    VLCaptureDefaultSetting(const VLCaptureDefaultSetting&) = delete;
    VLCaptureDefaultSetting& operator=(const VLCaptureDefaultSetting&) = delete;

    /// Whether a sound tells that a picture was delivered. Built in: true.
    [[nodiscard]] bool defaultValueOfPlaySound() const;
    /// True is the built-in default already, and false stands for it: the sound is turned off with
    /// `VLCaptureSetting::setPlaySound`.
    void setDefaultValueOfPlaySound(bool value);

    /// Whether pictures keep the pixels of a screen that has several to a point. Built in: true.
    [[nodiscard]] bool defaultValueOfResolution() const;
    /// True is the built-in default already, and false stands for it: pictures are reduced with
    /// `VLCaptureSetting::setHighResolution`.
    void setDefaultValueOfResolution(bool value);

    /// Whether the capture is a product of its own and no part of another one. Built in: true.
    [[nodiscard]] bool defaultValueOfRunAlone() const;
    /// True is the built-in default already, and false stands for it: a part of another product
    /// says so with `VLCaptureSetting::setRunAlone`.
    void setDefaultValueOfRunAlone(bool value);

    /// The format of saved files, a `VLBitmapFileType`. Built in: PNG.
    [[nodiscard]] uint64_t defaultValueOfFileType() const;
    /// Sets that format, 1 to 5; 0, which would be TIFF, stands for PNG.
    void setDefaultValueOfFileType(uint64_t value);

    /// The folder that the first saving begins with. Built in: the user's desktop folder.
    [[nodiscard]] std::string defaultValueOfSavePath() const;
    /// Sets that folder: an absolute path, or one that begins with "~".
    void setDefaultValueOfSavePath(std::string value);

    /// What the names of saved files begin with. Built in: "Vorla".
    [[nodiscard]] std::string defaultValueOfFileNamePrefix() const;
    /// Sets that beginning; before the first file is named, which fixes it for the process.
    void setDefaultValueOfFileNamePrefix(std::string value);

    /// Through which channel the product is distributed. Built in: "VorlaSDK".
    [[nodiscard]] std::string defaultValueOfChannel() const;
    /// Sets the channel of users for whom none is stored.
    void setDefaultValueOfChannel(std::string value);

 private:
    struct Values;
    std::unique_ptr<Values> values_;
};
