#include "platform/base/Bundle.h"

#include <dlfcn.h>
#include <vorla/VLInfo.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>

#include "platform/base/VLLog.h"
#include "platform/base/files.h"
#include "platform/base/jsonObject.h"
#include "platform/base/raii.h"

namespace vorla {
namespace {

using nlohmann::json;

/// The directory that the library, or the program that it is linked into, was loaded from; empty
/// where that cannot be found out.
std::filesystem::path ownFolder() {
    Dl_info facts = {};
    std::error_code error;
    if (!dladdr(reinterpret_cast<const void*>(&ownFolder), &facts) || !facts.dli_fname) return {};
    return std::filesystem::canonical(facts.dli_fname, error).parent_path();
}

/// `below` ("share/VorlaFramework") under the directory that the library was installed in; empty
/// where it is not there.
std::string installedPath(const std::string& below) {
    std::error_code error;
    // A multiarch library directory (lib/x86_64-linux-gnu) lies one level deeper.
    for (auto folder = ownFolder(); folder.has_relative_path(); folder = folder.parent_path()) {
        const auto candidate = folder.parent_path() / below;
        if (std::filesystem::exists(candidate, error)) return candidate.string();
    }
    return {};
}

std::string initialResourcePath() {
    // Not from the environment of a program that runs with another user's rights.
    if (const char* named = secure_getenv("VORLA_RESOURCES"); named && *named) return named;
    const std::string installed = installedPath("share/VorlaFramework");
    return installed.empty() ? "/usr/share/VorlaFramework" : installed;
}

json readJsonObject(const std::string& path) {
    json value = jsonObject(readFile(path).value_or(""));
    return value.is_discarded() ? json::object() : value;
}

struct HostState {
    std::mutex mutex;
    std::string displayName;
};

HostState& hostState() {
    static NoDestructor<HostState> instance;
    return *instance;
}

}  // namespace

struct Bundle::State {
    mutable std::mutex mutex;
    std::optional<std::string> path;
    std::optional<json> info;
    std::map<std::string, std::string, std::less<>> overrides;
    std::map<std::string, json> stringTables;

    const std::string& resourcePath() {
        if (!path) path = initialResourcePath();
        return *path;
    }

    const json& infoDictionary() {
        if (!info) info = readJsonObject(resourcePath() + "/Info.json");
        return *info;
    }

    const json& stringTable(const std::string& language) {
        auto found = stringTables.find(language);
        if (found == stringTables.end()) {
            json table =
                readJsonObject(resourcePath() + "/" + language + ".lproj/Localizable.json");
            found = stringTables.emplace(language, std::move(table)).first;
        }
        return found->second;
    }
};

Bundle::Bundle() : state_(std::make_unique<State>()) {}
Bundle::~Bundle() = default;

Bundle& Bundle::framework() {
    static NoDestructor<Bundle> instance;
    return *instance;
}

std::string Bundle::resourcePath() const {
    const std::lock_guard lock(state_->mutex);
    return state_->resourcePath();
}

std::string Bundle::pathForResource(std::string_view name) const {
    std::string path = resourcePath() + "/" + std::string(name);
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) ? path : std::string();
}

std::string Bundle::pathForHelper(const std::string& name) {
    return installedPath("libexec/VorlaFramework/" + name);
}

std::string Bundle::pathForModule(const std::string& name) {
    const std::string file = VORLA_MODULES "/" + name + ".so";
    std::error_code error;
    const auto folder = ownFolder();
    const auto beside = folder / file;
    if (!folder.empty() && std::filesystem::exists(beside, error)) return beside.string();
    return installedPath("lib/" + file);
}

json Bundle::infoValue(std::string_view key) const {
    const std::lock_guard lock(state_->mutex);
    if (const auto set = state_->overrides.find(key); set != state_->overrides.end())
        return set->second;
    const json& info = state_->infoDictionary();
    const auto found = info.find(std::string(key));
    return found == info.end() ? json() : *found;
}

std::string Bundle::infoString(std::string_view key) const {
    const json value = infoValue(key);
    if (value.is_string()) return value.get<std::string>();
    return value.is_number() ? value.dump() : std::string();
}

void Bundle::setInfoString(std::string_view key, std::string value) {
    const std::lock_guard lock(state_->mutex);
    state_->overrides.insert_or_assign(std::string(key), std::move(value));
}

std::string Bundle::localizedString(std::string_view key) const {
    const std::string language = preferredLanguage();
    const std::lock_guard lock(state_->mutex);
    for (const std::string& candidate : {language, std::string("en")}) {
        const json& table = state_->stringTable(candidate);
        const auto found = table.find(std::string(key));
        if (found != table.end() && found->is_string()) return found->get<std::string>();
    }
    return std::string(key);
}

void Bundle::setResourcePath(std::string path) {
    const std::lock_guard lock(state_->mutex);
    state_->path = std::move(path);
    state_->info.reset();
    state_->stringTables.clear();
}

std::string HostIdentity::displayName() {
    {
        const std::lock_guard lock(hostState().mutex);
        if (!hostState().displayName.empty()) return hostState().displayName;
    }
    return program_invocation_short_name;
}

void HostIdentity::setDisplayName(std::string name) {
    const std::lock_guard lock(hostState().mutex);
    hostState().displayName = std::move(name);
}

std::string HostIdentity::fileName() {
    std::string name = program_invocation_short_name;
    for (char& c : name) {
        const bool safe = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                          (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '_';
        if (!safe) c = '_';
    }
    return name.empty() || name[0] == '.' ? "host" + name : name;
}

std::string preferredLanguage() {
    std::string locale;
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (!value || !*value) continue;
        locale = value;
        break;
    }
    const bool plain =
        locale.empty() || locale == "C" || locale == "POSIX" || locale.starts_with("C.");
    // LANGUAGE is a list and is heeded only where a locale is set at all.
    if (const char* list = std::getenv("LANGUAGE"); !plain && list && *list) {
        const std::string_view names = list;
        const size_t first = names.find_first_not_of(':');
        if (first != std::string_view::npos)
            locale = names.substr(first, names.find(':', first) - first);
        if (locale == "C" || locale == "POSIX") return "en";
    } else if (plain) {
        return "en";
    }
    locale = locale.substr(0, locale.find_first_of(".@"));
    if (locale == "zh_CN" || locale == "zh_SG" || locale == "zh") return "zh-Hans";
    if (locale.starts_with("zh")) return "zh-Hant";
    return locale.substr(0, locale.find('_'));
}

}  // namespace vorla

void VLSetInfoValue(std::string_view key, std::string value) {
    vorla::Bundle::framework().setInfoString(key, std::move(value));
}

std::string VLInfoValue(std::string_view key) {
    return vorla::Bundle::framework().infoString(key);
}

bool VLSetResourceFolder(const std::string& path) {
    std::error_code error;
    std::filesystem::path folder(path);
    if (!folder.is_absolute() || !std::filesystem::is_directory(folder, error)) {
        VLLogError("\"%s\" is no folder of resources", path.c_str());
        return false;
    }
    if (!folder.has_filename()) folder = folder.parent_path();
    vorla::Bundle::framework().setResourcePath(folder.string());
    return true;
}

std::string VLResourceFolder() {
    return vorla::Bundle::framework().resourcePath();
}
