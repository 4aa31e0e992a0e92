#include "settings/VLCaptureDefaultSetting.h"

#include <utility>

#include "platform/base/files.h"
#include "platform/base/raii.h"
#include "settings/VLCaptureSetting.h"

VLCaptureDefaultSetting& VLCaptureDefaultSetting::sharedInstance() {
    static vorla::NoDestructor<VLCaptureDefaultSetting> instance;
    return *instance;
}

template <typename T>
T VLCaptureDefaultSetting::valueOr(const T& field, T builtIn) const {
    const std::lock_guard lock(mutex_);
    return field == T() ? std::move(builtIn) : field;
}

template <typename T>
void VLCaptureDefaultSetting::store(T& field, T value) {
    const std::lock_guard lock(mutex_);
    field = std::move(value);
}

bool VLCaptureDefaultSetting::defaultValueOfPlaySound() const {
    return valueOr(playSound_, true);
}
void VLCaptureDefaultSetting::setDefaultValueOfPlaySound(bool value) {
    store(playSound_, value);
}

bool VLCaptureDefaultSetting::defaultValueOfResolution() const {
    return valueOr(resolution_, true);
}
void VLCaptureDefaultSetting::setDefaultValueOfResolution(bool value) {
    store(resolution_, value);
}

bool VLCaptureDefaultSetting::defaultValueOfRunAlone() const {
    return valueOr(runAlone_, true);
}
void VLCaptureDefaultSetting::setDefaultValueOfRunAlone(bool value) {
    store(runAlone_, value);
}

uint64_t VLCaptureDefaultSetting::defaultValueOfFileType() const {
    return valueOr(fileType_, uint64_t{VLBitmapFileTypePNG});
}
void VLCaptureDefaultSetting::setDefaultValueOfFileType(uint64_t value) {
    store(fileType_, value);
}

std::string VLCaptureDefaultSetting::defaultValueOfSavePath() const {
    return valueOr(savePath_, vorla::desktopDirectory());
}
void VLCaptureDefaultSetting::setDefaultValueOfSavePath(std::string value) {
    store(savePath_, std::move(value));
}

std::string VLCaptureDefaultSetting::defaultValueOfFileNamePrefix() const {
    return valueOr(fileNamePrefix_, std::string("Vorla"));
}
void VLCaptureDefaultSetting::setDefaultValueOfFileNamePrefix(std::string value) {
    store(fileNamePrefix_, std::move(value));
}

std::string VLCaptureDefaultSetting::defaultValueOfChannel() const {
    return valueOr(channel_, std::string("VorlaSDK"));
}
void VLCaptureDefaultSetting::setDefaultValueOfChannel(std::string value) {
    store(channel_, std::move(value));
}
