#include "settings/VLCaptureSetting.h"

#include <utility>

#include "platform/base/raii.h"
#include "settings/VLCaptureDefaultSetting.h"

namespace {

using Value = vorla::UserDefaults::Value;

std::optional<int64_t> integerOf(const Value& value) {
    if (const bool* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
    if (const int64_t* number = std::get_if<int64_t>(&value)) return *number;
    const double* real = std::get_if<double>(&value);
    // 2^63 is the first double that no signed 64-bit number holds; the test also drops NaN.
    if (real && *real >= -0x1p63 && *real < 0x1p63) return static_cast<int64_t>(*real);
    return std::nullopt;
}

}  // namespace

VLCaptureSetting& VLCaptureSetting::sharedInstance() {
    static vorla::NoDestructor<VLCaptureSetting> instance(
        vorla::UserDefaults::standardUserDefaults(), VLCaptureDefaultSetting::sharedInstance());
    return *instance;
}

VLCaptureSetting::VLCaptureSetting(vorla::UserDefaults& defaults,
                                   const VLCaptureDefaultSetting& fallbacks)
    : defaults_(defaults), fallbacks_(fallbacks) {}

void VLCaptureSetting::store(std::string_view key, Value value) {
    defaults_.setObject(key, std::move(value));
    defaults_.synchronize();
}

bool VLCaptureSetting::readBool(std::string_view key, bool fallback) {
    const auto stored = defaults_.objectForKey(key);
    if (!stored) {
        store(key, fallback);
        return fallback;
    }
    const auto number = integerOf(*stored);
    return number ? *number != 0 : fallback;
}

std::string VLCaptureSetting::readString(std::string_view key, const std::string& fallback) {
    const auto stored = defaults_.objectForKey(key);
    const std::string* text = stored ? std::get_if<std::string>(&*stored) : nullptr;
    return text ? *text : fallback;
}

bool VLCaptureSetting::isPlaySound() {
    return readBool(VLCaptureSettingKeyPlaySound, defaultValueOfPlaySound());
}
void VLCaptureSetting::setPlaySound(bool value) {
    store(VLCaptureSettingKeyPlaySound, value);
}

bool VLCaptureSetting::isHighResolution() {
    return readBool(VLCaptureSettingKeyHighResolution, defaultValueOfResolution());
}
void VLCaptureSetting::setHighResolution(bool value) {
    store(VLCaptureSettingKeyHighResolution, value);
}

uint64_t VLCaptureSetting::fileType() {
    const auto stored = defaults_.objectForKey(VLCaptureSettingKeyFileType);
    const uint64_t fallback = defaultValueOfFileType();
    if (!stored) {
        setFileType(fallback);
        return fallback;
    }
    const auto number = integerOf(*stored);
    return number ? static_cast<uint64_t>(*number) : fallback;
}
void VLCaptureSetting::setFileType(uint64_t value) {
    store(VLCaptureSettingKeyFileType, static_cast<int64_t>(value));
}

std::string VLCaptureSetting::lastSavePath() {
    if (!defaults_.objectForKey(VLCaptureSettingLastSavePath))
        setLastSavePath(defaultValueOfSavePath());
    return readString(VLCaptureSettingLastSavePath, defaultValueOfSavePath());
}
void VLCaptureSetting::setLastSavePath(const std::string& value) {
    store(VLCaptureSettingLastSavePath, value);
}

std::string VLCaptureSetting::channel() {
    return readString(VLSettingKeyChannel, defaultValueOfChannel());
}
void VLCaptureSetting::setChannel(const std::string& value) {
    if (!value.empty()) store(VLSettingKeyChannel, value);
}

bool VLCaptureSetting::isRunAlone() {
    return readBool(VLSettingKeyRunAlone, defaultValueOfRunAlone());
}
void VLCaptureSetting::setRunAlone(bool value) {
    store(VLSettingKeyRunAlone, value);
}

std::string VLCaptureSetting::themeName() {
    return readString(VLCaptureSettingKeyThemeName, defaultValueOfThemeName());
}
void VLCaptureSetting::setThemeName(const std::string& value) {
    store(VLCaptureSettingKeyThemeName, value);
}

std::string VLCaptureSetting::fileNamePrefix() {
    const std::lock_guard lock(prefixMutex_);
    if (!fileNamePrefix_) fileNamePrefix_ = defaultValueOfFileNamePrefix();
    return *fileNamePrefix_;
}
void VLCaptureSetting::setFileNamePrefix(std::string value) {
    const std::lock_guard lock(prefixMutex_);
    fileNamePrefix_ = std::move(value);
}

bool VLCaptureSetting::defaultValueOfPlaySound() const {
    return fallbacks_.defaultValueOfPlaySound();
}
bool VLCaptureSetting::defaultValueOfResolution() const {
    return fallbacks_.defaultValueOfResolution();
}
bool VLCaptureSetting::defaultValueOfRunAlone() const {
    return fallbacks_.defaultValueOfRunAlone();
}
uint64_t VLCaptureSetting::defaultValueOfFileType() const {
    return fallbacks_.defaultValueOfFileType();
}
std::string VLCaptureSetting::defaultValueOfSavePath() const {
    return fallbacks_.defaultValueOfSavePath();
}
std::string VLCaptureSetting::defaultValueOfFileNamePrefix() const {
    return fallbacks_.defaultValueOfFileNamePrefix();
}
std::string VLCaptureSetting::defaultValueOfChannel() const {
    return fallbacks_.defaultValueOfChannel();
}
std::string VLCaptureSetting::defaultValueOfThemeName() const {
    return "default";
}
