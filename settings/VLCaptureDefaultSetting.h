#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "platform/base/export.h"

/// What the settings are when the user has chosen nothing. A host fills this in before its first
/// capture to give its product defaults of its own.
///
/// A value that is false, 0 or empty counts as not set, and its getter gives the built-in value: a
/// host can therefore not make false, or TIFF, the default. Any thread.
class VL_EXPORT VLCaptureDefaultSetting {
 public:
    static VLCaptureDefaultSetting& sharedInstance();

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

    /// Built in: the user's desktop directory.
    [[nodiscard]] std::string defaultValueOfSavePath() const;
    void setDefaultValueOfSavePath(std::string value);

    /// Built in: "Vorla".
    [[nodiscard]] std::string defaultValueOfFileNamePrefix() const;
    void setDefaultValueOfFileNamePrefix(std::string value);

    /// Built in: "VorlaSDK".
    [[nodiscard]] std::string defaultValueOfChannel() const;
    void setDefaultValueOfChannel(std::string value);

 private:
    template <typename T>
    T valueOr(const T& field, T builtIn) const;
    template <typename T>
    void store(T& field, T value);

    mutable std::mutex mutex_;
    bool playSound_ = false;
    bool resolution_ = false;
    bool runAlone_ = false;
    uint64_t fileType_ = 0;
    std::string savePath_;
    std::string fileNamePrefix_;
    std::string channel_;
};
