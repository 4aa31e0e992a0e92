#include <vorla/VLCaptureDefaultSetting.h>
#include <vorla/VLCaptureSetting.h>

#include <mutex>
#include <utility>

#include "platform/base/files.h"
#include "platform/base/raii.h"

struct VLCaptureDefaultSetting::Values {
    mutable std::mutex mutex;
    bool playSound = false;
    bool resolution = false;
    bool runAlone = false;
    uint64_t fileType = 0;
    std::string savePath;
    std::string fileNamePrefix;
    std::string channel;

    template <typename T>
    T valueOr(const T& field, T builtIn) const {
        const std::lock_guard lock(mutex);
        return field == T() ? std::move(builtIn) : field;
    }

    template <typename T>
    void store(T& field, T value) {
        const std::lock_guard lock(mutex);
        field = std::move(value);
    }
};

VLCaptureDefaultSetting::VLCaptureDefaultSetting() : values_(std::make_unique<Values>()) {}
VLCaptureDefaultSetting::~VLCaptureDefaultSetting() = default;

VLCaptureDefaultSetting& VLCaptureDefaultSetting::sharedInstance() {
    static vorla::NoDestructor<VLCaptureDefaultSetting> instance;
    return *instance;
}

bool VLCaptureDefaultSetting::defaultValueOfPlaySound() const {
    return values_->valueOr(values_->playSound, true);
}
void VLCaptureDefaultSetting::setDefaultValueOfPlaySound(bool value) {
    values_->store(values_->playSound, value);
}

bool VLCaptureDefaultSetting::defaultValueOfResolution() const {
    return values_->valueOr(values_->resolution, true);
}
void VLCaptureDefaultSetting::setDefaultValueOfResolution(bool value) {
    values_->store(values_->resolution, value);
}

bool VLCaptureDefaultSetting::defaultValueOfRunAlone() const {
    return values_->valueOr(values_->runAlone, true);
}
void VLCaptureDefaultSetting::setDefaultValueOfRunAlone(bool value) {
    values_->store(values_->runAlone, value);
}

uint64_t VLCaptureDefaultSetting::defaultValueOfFileType() const {
    return values_->valueOr(values_->fileType, uint64_t{VLBitmapFileTypePNG});
}
void VLCaptureDefaultSetting::setDefaultValueOfFileType(uint64_t value) {
    values_->store(values_->fileType, value);
}

std::string VLCaptureDefaultSetting::defaultValueOfSavePath() const {
    return values_->valueOr(values_->savePath, vorla::desktopDirectory());
}
void VLCaptureDefaultSetting::setDefaultValueOfSavePath(std::string value) {
    values_->store(values_->savePath, std::move(value));
}

std::string VLCaptureDefaultSetting::defaultValueOfFileNamePrefix() const {
    return values_->valueOr(values_->fileNamePrefix, std::string("Vorla"));
}
void VLCaptureDefaultSetting::setDefaultValueOfFileNamePrefix(std::string value) {
    values_->store(values_->fileNamePrefix, std::move(value));
}

std::string VLCaptureDefaultSetting::defaultValueOfChannel() const {
    return values_->valueOr(values_->channel, std::string("VorlaSDK"));
}
void VLCaptureDefaultSetting::setDefaultValueOfChannel(std::string value) {
    values_->store(values_->channel, std::move(value));
}
