#include <vorla/VLCaptureDefaultSetting.h>
#include <vorla/VLCaptureSetting.h>

#include <mutex>
#include <optional>
#include <utility>

#include "platform/base/UserDefaults.h"
#include "platform/base/raii.h"

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

struct VLCaptureSetting::State {
    State(vorla::UserDefaults& store, const VLCaptureDefaultSetting& values)
        : defaults(store), fallbacks(values) {}

    vorla::UserDefaults& defaults;
    const VLCaptureDefaultSetting& fallbacks;
    std::mutex prefixMutex;
    std::optional<std::string> fileNamePrefix;

    void store(std::string_view key, Value value) {
        defaults.setObject(key, std::move(value));
        defaults.synchronize();
    }

    bool readBool(std::string_view key, bool fallback) {
        const auto stored = defaults.objectForKey(key);
        if (!stored) {
            store(key, fallback);
            return fallback;
        }
        const auto number = integerOf(*stored);
        return number ? *number != 0 : fallback;
    }

    std::string readString(std::string_view key, const std::string& fallback) {
        const auto stored = defaults.objectForKey(key);
        const std::string* text = stored ? std::get_if<std::string>(&*stored) : nullptr;
        return text ? *text : fallback;
    }
};

VLCaptureSetting::VLCaptureSetting(vorla::UserDefaults& defaults,
                                   const VLCaptureDefaultSetting& fallbacks)
    : state_(std::make_unique<State>(defaults, fallbacks)) {}
VLCaptureSetting::~VLCaptureSetting() = default;

bool VLCaptureSetting::isPlaySound() {
    return state_->readBool(VLCaptureSettingKeyPlaySound, defaultValueOfPlaySound());
}
void VLCaptureSetting::setPlaySound(bool value) {
    state_->store(VLCaptureSettingKeyPlaySound, value);
}

bool VLCaptureSetting::isHighResolution() {
    return state_->readBool(VLCaptureSettingKeyHighResolution, defaultValueOfResolution());
}
void VLCaptureSetting::setHighResolution(bool value) {
    state_->store(VLCaptureSettingKeyHighResolution, value);
}

uint64_t VLCaptureSetting::fileType() {
    const auto stored = state_->defaults.objectForKey(VLCaptureSettingKeyFileType);
    const uint64_t fallback = defaultValueOfFileType();
    if (!stored) {
        setFileType(fallback);
        return fallback;
    }
    const auto number = integerOf(*stored);
    return number ? static_cast<uint64_t>(*number) : fallback;
}
void VLCaptureSetting::setFileType(uint64_t value) {
    state_->store(VLCaptureSettingKeyFileType, static_cast<int64_t>(value));
}

std::string VLCaptureSetting::lastSavePath() {
    if (!state_->defaults.objectForKey(VLCaptureSettingLastSavePath))
        setLastSavePath(defaultValueOfSavePath());
    return state_->readString(VLCaptureSettingLastSavePath, defaultValueOfSavePath());
}
void VLCaptureSetting::setLastSavePath(const std::string& value) {
    state_->store(VLCaptureSettingLastSavePath, value);
}

std::string VLCaptureSetting::channel() {
    return state_->readString(VLSettingKeyChannel, defaultValueOfChannel());
}
void VLCaptureSetting::setChannel(const std::string& value) {
    if (!value.empty()) state_->store(VLSettingKeyChannel, value);
}

bool VLCaptureSetting::isRunAlone() {
    return state_->readBool(VLSettingKeyRunAlone, defaultValueOfRunAlone());
}
void VLCaptureSetting::setRunAlone(bool value) {
    state_->store(VLSettingKeyRunAlone, value);
}

std::string VLCaptureSetting::themeName() {
    return state_->readString(VLCaptureSettingKeyThemeName, defaultValueOfThemeName());
}
void VLCaptureSetting::setThemeName(const std::string& value) {
    state_->store(VLCaptureSettingKeyThemeName, value);
}

std::string VLCaptureSetting::fileNamePrefix() {
    const std::lock_guard lock(state_->prefixMutex);
    if (!state_->fileNamePrefix) state_->fileNamePrefix = defaultValueOfFileNamePrefix();
    return *state_->fileNamePrefix;
}
void VLCaptureSetting::setFileNamePrefix(std::string value) {
    const std::lock_guard lock(state_->prefixMutex);
    state_->fileNamePrefix = std::move(value);
}

bool VLCaptureSetting::defaultValueOfPlaySound() const {
    return state_->fallbacks.defaultValueOfPlaySound();
}
bool VLCaptureSetting::defaultValueOfResolution() const {
    return state_->fallbacks.defaultValueOfResolution();
}
bool VLCaptureSetting::defaultValueOfRunAlone() const {
    return state_->fallbacks.defaultValueOfRunAlone();
}
uint64_t VLCaptureSetting::defaultValueOfFileType() const {
    return state_->fallbacks.defaultValueOfFileType();
}
std::string VLCaptureSetting::defaultValueOfSavePath() const {
    return state_->fallbacks.defaultValueOfSavePath();
}
std::string VLCaptureSetting::defaultValueOfFileNamePrefix() const {
    return state_->fallbacks.defaultValueOfFileNamePrefix();
}
std::string VLCaptureSetting::defaultValueOfChannel() const {
    return state_->fallbacks.defaultValueOfChannel();
}
std::string VLCaptureSetting::defaultValueOfThemeName() const {
    return "default";
}
