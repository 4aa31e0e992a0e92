// Of <vorla/vorla.h>: crash reports.

#include <vorla/CrashReporter.h>
#include <vorla/VLPrepareThreadForCrash.h>
#include <vorla/vorla.h>

#include <filesystem>
#include <string>

#include "cinterface/services/serving.h"

using vorla::c::optionalTextError;
using vorla::c::serving;
using vorla::c::textError;

namespace {

CrashReporter& reporter() {
    return CrashReporter::sharedInstance();
}

bool isBlank(const char* text) {
    return std::string(text).find_first_not_of(" \t\r\n\v\f") == std::string::npos;
}

int crashOptionsError(const vorla_crash_options& options) {
    constexpr uint32_t flags = VORLA_CRASH_NO_SIGNALS | VORLA_CRASH_NO_EXCEPTIONS |
                               VORLA_CRASH_NO_NAMES | VORLA_CRASH_NO_MERGING;
    if (const int error = textError({options.app_key})) return error;
    if (const int error =
            optionalTextError({options.folder, options.program_id, options.program_version,
                               options.user_id, options.device_id, options.channel}))
        return error;
    if (isBlank(options.app_key)) return VORLA_ERROR_EMPTY;
    if ((options.flags & ~flags) != 0 || options.reserved != 0) return VORLA_ERROR_UNKNOWN_OPTION;
    if (options.folder && !std::filesystem::path(options.folder).is_absolute())
        return VORLA_ERROR_NO_FOLDER;
    return reporter().isInstalled() ? VORLA_ERROR_INSTALLED : VORLA_OK;
}

int install(const vorla_crash_options& options) {
    const auto text = [](const char* given) { return std::string(given ? given : ""); };
    CrashReporter& crashes = reporter();
    if (options.folder) crashes.resetDBPath(options.folder);
    crashes.enableSignalErrorReporter((options.flags & VORLA_CRASH_NO_SIGNALS) == 0);
    crashes.enableNSExceptionReporter((options.flags & VORLA_CRASH_NO_EXCEPTIONS) == 0);
    crashes.setEnableSymbolicateInProcess((options.flags & VORLA_CRASH_NO_NAMES) == 0);
    if ((options.flags & VORLA_CRASH_NO_MERGING) != 0) crashes.setExpMergeUpload(false);
    // Empty ones change nothing.
    crashes.setBundleId(text(options.program_id));
    crashes.setBundleVer(text(options.program_version));
    crashes.setUserId(text(options.user_id));
    crashes.setDeviceId(text(options.device_id));
    crashes.setChannel(text(options.channel));
    if (options.crashed) exp_call_back_func = options.crashed;
    return crashes.installWithAppkey(options.app_key) ? VORLA_OK : VORLA_ERROR_INSTALLED;
}

}  // namespace

int vorla_crash_install(const vorla_crash_options* options) {
    return serving(__func__, [=]() -> int {
        vorla_crash_options known = VORLA_CRASH_OPTIONS_INIT;
        if (const int error = vorla::c::readOptions(options, known)) return error;
        if (const int error = crashOptionsError(known)) return error;
        return install(known);
    });
}

int vorla_crash_uninstall() {
    return serving(__func__, []() -> int {
        if (!reporter().isInstalled()) return VORLA_ERROR_NOT_INSTALLED;
        reporter().uninstall();
        return VORLA_OK;
    });
}

int vorla_crash_add_event(const char* event) {
    return serving(__func__, [=]() -> int {
        if (const int error = textError({event})) return error;
        reporter().addSessionEvent(event);
        return VORLA_OK;
    });
}

int vorla_crash_set_user_data(const char* key, const char* value) {
    return serving(__func__, [=]() -> int {
        if (const int error = textError({key, value})) return error;
        reporter().setUserData(key, value);
        return VORLA_OK;
    });
}

int vorla_crash_set_scene(uint64_t scene) {
    return serving(__func__, [=]() -> int {
        reporter().setScene(scene);
        return VORLA_OK;
    });
}

int vorla_crash_add_scene_value(const char* key, const char* value) {
    return serving(__func__, [=]() -> int {
        if (const int error = textError({key, value})) return error;
        reporter().addSceneValue(value, key);
        return VORLA_OK;
    });
}

int vorla_crash_attach_text(const char* text) {
    return serving(__func__, [=]() -> int {
        if (const int error = textError({text})) return error;
        reporter().setAttachLog(text);
        return VORLA_OK;
    });
}

int vorla_crash_report(const char* name, const char* reason, const char* call_stack) {
    return serving(__func__, [=]() -> int {
        if (const int error = textError({name, reason})) return error;
        if (const int error = optionalTextError({call_stack})) return error;
        if (!*name) return VORLA_ERROR_EMPTY;
        if (!reporter().isInstalled()) return VORLA_ERROR_NOT_INSTALLED;
        reporter().reportError(name, reason, call_stack ? call_stack : "", "");
        return VORLA_OK;
    });
}

int vorla_crash_prepare_thread() {
    return serving(__func__, []() -> int {
        return VLPrepareThreadForCrash() ? VORLA_OK : VORLA_ERROR_NO_MEMORY;
    });
}

int vorla_crash_ended_last_run(int* value) {
    return serving(__func__, [=]() -> int {
        if (!value) return VORLA_ERROR_NULL;
        *value = reporter().isLastCloseByCrash() ? 1 : 0;
        return VORLA_OK;
    });
}

int vorla_crash_count(size_t* count) {
    return serving(__func__, [=]() -> int {
        if (!count) return VORLA_ERROR_NULL;
        *count = reporter().storedCrashCount();
        return VORLA_OK;
    });
}
