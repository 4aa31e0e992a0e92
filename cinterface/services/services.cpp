// Of <vorla/vorla.h>: errors, resources, information values, settings, logs, statistics.

#include <vorla/VLCaptureDefaultSetting.h>
#include <vorla/VLCaptureOutcome.h>
#include <vorla/VLCaptureSetting.h>
#include <vorla/VLInfo.h>
#include <vorla/VLLogging.h>
#include <vorla/VLStatistics.h>
#include <vorla/vorla.h>

#include <filesystem>
#include <iterator>
#include <string>

#include "cinterface/services/serving.h"

using vorla::c::copyText;
using vorla::c::serving;
using vorla::c::textError;

const char* vorla_version() {
    return VORLA_VERSION;
}

const char* vorla_error_text(int error) {
    switch (error) {
        case VORLA_ERROR_NULL:
            return "an argument that may not be null is";
        case VORLA_ERROR_STRUCT_SIZE:
            return "the size in a structure cannot be right";
        case VORLA_ERROR_UNKNOWN_OPTION:
            return "a structure asks for what this version of the library does not know";
        case VORLA_ERROR_OUT_OF_RANGE:
            return "a number is none of those that have a meaning";
        case VORLA_ERROR_KIND:
            return "the setting is of another kind, or has no default to set";
        case VORLA_ERROR_BUFFER_TOO_SMALL:
            return "the text does not fit into the buffer";
        case VORLA_ERROR_NOT_UTF8:
            return "a text is not UTF-8";
        case VORLA_ERROR_NOT_OWNED:
            return "the outcome belongs to the caller of the callback";
        case VORLA_ERROR_NO_MEMORY:
            return "there is not enough memory";
        case VORLA_ERROR_INTERNAL:
            return "a fault of the framework's, which the log names";
        case VORLA_ERROR_NO_FOLDER:
            return "there is no such folder, or its path is not absolute";
        case VORLA_ERROR_INSTALLED:
            return "crash reporting is installed already";
        case VORLA_ERROR_NOT_INSTALLED:
            return "crash reporting is not installed";
        case VORLA_ERROR_EMPTY:
            return "a text that may not be empty is";
        default:
            return VLCaptureErrorText(static_cast<VLCaptureError>(error));
    }
}

// Resources and information values -------------------------------------------------------------

int vorla_set_resource_folder(const char* path) {
    return serving(__func__, [=]() -> int {
        if (const int error = textError({path})) return error;
        return VLSetResourceFolder(path) ? VORLA_OK : VORLA_ERROR_NO_FOLDER;
    });
}

int vorla_get_resource_folder(char* buffer, size_t capacity, size_t* length) {
    return serving(__func__,
                   [=]() -> int { return copyText(VLResourceFolder(), buffer, capacity, length); });
}

int vorla_set_info(const char* key, const char* value) {
    return serving(__func__, [=]() -> int {
        if (const int error = textError({key, value})) return error;
        VLSetInfoValue(key, value);
        return VORLA_OK;
    });
}

int vorla_get_info(const char* key, char* buffer, size_t capacity, size_t* length) {
    return serving(__func__, [=]() -> int {
        if (const int error = textError({key})) return error;
        return copyText(VLInfoValue(key), buffer, capacity, length);
    });
}

// Settings -------------------------------------------------------------------------------------

namespace {

VLCaptureSetting& user() {
    return VLCaptureSetting::sharedInstance();
}
VLCaptureDefaultSetting& product() {
    return VLCaptureDefaultSetting::sharedInstance();
}

struct NumberSetting {
    int setting;
    int64_t largest;
    int64_t (*get)();
    void (*set)(int64_t value);
    int64_t (*getDefault)();
    void (*setDefault)(int64_t value);
};

const NumberSetting numbers[] = {
    {VORLA_SETTING_PLAY_SOUND, 1, [] { return int64_t{user().isPlaySound()}; },
     [](int64_t value) { user().setPlaySound(value != 0); },
     [] { return int64_t{product().defaultValueOfPlaySound()}; },
     [](int64_t value) { product().setDefaultValueOfPlaySound(value != 0); }},
    {VORLA_SETTING_HIGH_RESOLUTION, 1, [] { return int64_t{user().isHighResolution()}; },
     [](int64_t value) { user().setHighResolution(value != 0); },
     [] { return int64_t{product().defaultValueOfResolution()}; },
     [](int64_t value) { product().setDefaultValueOfResolution(value != 0); }},
    {VORLA_SETTING_FILE_TYPE, VORLA_FILE_JPEG2000,
     [] { return static_cast<int64_t>(user().fileType()); },
     [](int64_t value) { user().setFileType(static_cast<uint64_t>(value)); },
     [] { return static_cast<int64_t>(product().defaultValueOfFileType()); },
     [](int64_t value) { product().setDefaultValueOfFileType(static_cast<uint64_t>(value)); }},
    {VORLA_SETTING_RUN_ALONE, 1, [] { return int64_t{user().isRunAlone()}; },
     [](int64_t value) { user().setRunAlone(value != 0); },
     [] { return int64_t{product().defaultValueOfRunAlone()}; },
     [](int64_t value) { product().setDefaultValueOfRunAlone(value != 0); }},
};

struct TextSetting {
    int setting;
    std::string (*get)();
    void (*set)(const char* value);
    std::string (*getDefault)();
    void (*setDefault)(const char* value);  ///< null where the default is fixed
};

const TextSetting texts[] = {
    {VORLA_SETTING_SAVE_FOLDER, [] { return user().lastSavePath(); },
     [](const char* value) { user().setLastSavePath(value); },
     [] { return product().defaultValueOfSavePath(); },
     [](const char* value) { product().setDefaultValueOfSavePath(value); }},
    {VORLA_SETTING_FILE_NAME_PREFIX, [] { return user().fileNamePrefix(); },
     [](const char* value) { user().setFileNamePrefix(value); },
     [] { return product().defaultValueOfFileNamePrefix(); },
     [](const char* value) { product().setDefaultValueOfFileNamePrefix(value); }},
    {VORLA_SETTING_CHANNEL, [] { return user().channel(); },
     [](const char* value) { user().setChannel(value); },
     [] { return product().defaultValueOfChannel(); },
     [](const char* value) { product().setDefaultValueOfChannel(value); }},
    {VORLA_SETTING_THEME_NAME, [] { return user().themeName(); },
     [](const char* value) { user().setThemeName(value); },
     [] { return user().defaultValueOfThemeName(); }, nullptr},
};

/// Does `use` with the setting of that number in `table`.
template <typename Table, typename Use>
int withSetting(const char* function, const Table& table, int setting, Use use) {
    return serving(function, [&]() -> int {
        for (const auto& row : table)
            if (row.setting == setting) return use(row);
        const bool exists =
            setting >= 0 && setting < static_cast<int>(std::size(numbers) + std::size(texts));
        return exists ? VORLA_ERROR_KIND : VORLA_ERROR_OUT_OF_RANGE;
    });
}

template <typename Get>
int getNumber(const char* function, int setting, int64_t* value, Get get) {
    return withSetting(function, numbers, setting, [=](const NumberSetting& row) -> int {
        if (!value) return VORLA_ERROR_NULL;
        *value = (row.*get)();
        return VORLA_OK;
    });
}

template <typename Set>
int setNumber(const char* function, int setting, int64_t value, Set set) {
    return withSetting(function, numbers, setting, [=](const NumberSetting& row) -> int {
        if (value < 0 || value > row.largest) return VORLA_ERROR_OUT_OF_RANGE;
        (row.*set)(value);
        return VORLA_OK;
    });
}

template <typename Set>
int setText(const char* function, int setting, const char* value, Set set) {
    return withSetting(function, texts, setting, [=](const TextSetting& row) -> int {
        if (const int error = textError({value})) return error;
        if (!(row.*set)) return VORLA_ERROR_KIND;
        (row.*set)(value);
        return VORLA_OK;
    });
}

}  // namespace

int vorla_get_number(int setting, int64_t* value) {
    return getNumber(__func__, setting, value, &NumberSetting::get);
}
int vorla_set_number(int setting, int64_t value) {
    return setNumber(__func__, setting, value, &NumberSetting::set);
}
int vorla_get_default_number(int setting, int64_t* value) {
    return getNumber(__func__, setting, value, &NumberSetting::getDefault);
}
int vorla_set_default_number(int setting, int64_t value) {
    return setNumber(__func__, setting, value, &NumberSetting::setDefault);
}

int vorla_get_text(int setting, char* buffer, size_t capacity, size_t* length) {
    return withSetting(__func__, texts, setting, [=](const TextSetting& row) -> int {
        return copyText(row.get(), buffer, capacity, length);
    });
}
int vorla_set_text(int setting, const char* value) {
    return setText(__func__, setting, value, &TextSetting::set);
}
int vorla_get_default_text(int setting, char* buffer, size_t capacity, size_t* length) {
    return withSetting(__func__, texts, setting, [=](const TextSetting& row) -> int {
        return copyText(row.getDefault(), buffer, capacity, length);
    });
}
int vorla_set_default_text(int setting, const char* value) {
    return setText(__func__, setting, value, &TextSetting::setDefault);
}

// Logs and statistics --------------------------------------------------------------------------

int vorla_set_log_handler(vorla_log_handler handler, void* user) {
    return serving(__func__, [=]() -> int {
        if (handler)
            VLSetLogHandler([handler, user](std::string_view line) {
                handler(std::string(line).c_str(), user);
            });
        else
            VLSetLogHandler({});
        return VORLA_OK;
    });
}

int vorla_set_log_level(int level) {
    return serving(__func__, [=]() -> int {
        if (level < VORLA_LOG_OFF || level > VORLA_LOG_TRACE) return VORLA_ERROR_OUT_OF_RANGE;
        VLSetLogLevel(static_cast<VLLogLevel>(level));
        return VORLA_OK;
    });
}

int vorla_start_statistics() {
    return serving(__func__, []() -> int {
        VLStartStatistics();
        return VORLA_OK;
    });
}

int vorla_count_event(int event) {
    constexpr int firstOfOurs = 1000, lastOfOurs = 1999;
    return serving(__func__, [=]() -> int {
        if (event < 0 || (event >= firstOfOurs && event <= lastOfOurs))
            return VORLA_ERROR_OUT_OF_RANGE;
        VLStatEvent(event);
        return VORLA_OK;
    });
}
