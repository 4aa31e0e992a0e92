#include "platform/base/UserDefaults.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"
#include "platform/base/files.h"
#include "platform/base/jsonObject.h"
#include "platform/base/raii.h"

namespace vorla {
namespace {

using nlohmann::json;

/// What distinguishes one version of a file from another: each is a new file renamed into place.
struct FileIdentity {
    ino_t inode = 0;
    timespec modified = {};
    off_t size = -1;

    static FileIdentity of(const std::string& path) {
        struct stat facts = {};
        if (::stat(path.c_str(), &facts) != 0) return {};
        return {facts.st_ino, facts.st_mtim, facts.st_size};
    }
    friend bool operator==(const FileIdentity& a, const FileIdentity& b) {
        return a.inode == b.inode && a.size == b.size && a.modified.tv_sec == b.modified.tv_sec &&
               a.modified.tv_nsec == b.modified.tv_nsec;
    }
};

std::optional<UserDefaults::Scalar> scalarOf(const json& stored) {
    if (stored.is_boolean()) return stored.get<bool>();
    if (stored.is_number_integer()) return stored.get<int64_t>();
    if (stored.is_number_float()) return stored.get<double>();
    if (stored.is_string()) return stored.get<std::string>();
    return std::nullopt;
}

std::optional<UserDefaults::Value> valueOf(const json& stored) {
    if (stored.is_object()) {
        UserDefaults::Dictionary members;
        for (const auto& [key, member] : stored.items())
            if (auto scalar = scalarOf(member)) members.emplace(key, *std::move(scalar));
        return members;
    }
    const auto scalar = scalarOf(stored);
    if (!scalar) return std::nullopt;
    return std::visit([](auto&& v) { return UserDefaults::Value(v); }, *scalar);
}

json storedForm(const UserDefaults::Value& value) {
    return std::visit(
        []<typename T>(const T& stored) -> json {
            if constexpr (std::is_same_v<T, UserDefaults::Dictionary>) {
                json object = json::object();
                for (const auto& [key, member] : stored)
                    object[key] = std::visit([](const auto& m) { return json(m); }, member);
                return object;
            } else {
                return stored;
            }
        },
        value);
}

json readObject(const std::string& path) {
    json object = jsonObject(readFile(path).value_or(""));
    return object.is_discarded() ? json::object() : object;
}

/// What a write has to merge into; discarded when the file must not be touched.
json readForMerge(const std::string& path) {
    const auto text = readFile(path);
    if (!text) return errno == ENOENT ? json::object() : json(json::value_t::discarded);
    json object = jsonObject(*text);
    if (!object.is_discarded()) return object;
    if (!text->empty()) {
        VLLogError("preferences %s cannot be parsed and are put aside", path.c_str());
        if (std::rename(path.c_str(), (path + ".broken").c_str()) != 0) return object;
    }
    return json::object();
}

/// An exclusive lock for a scope, shared with other processes.
class FileLock {
 public:
    explicit FileLock(const std::string& path)
        : fd_(::open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600)) {
        // A stopped process may hold the lock for ever.
        const auto latest = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        while (fd_ && !(held_ = ::flock(fd_.get(), LOCK_EX | LOCK_NB) == 0) &&
               (errno == EWOULDBLOCK || errno == EINTR) &&
               std::chrono::steady_clock::now() < latest)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    /// Unlocks by word: a child that was forked meanwhile shares the lock and does not close it.
    ~FileLock() {
        if (held_) ::flock(fd_.get(), LOCK_UN);
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    [[nodiscard]] bool isHeld() const { return held_; }

 private:
    UniqueFd fd_;
    bool held_ = false;
};

}  // namespace

struct UserDefaults::State {
    std::string path;
    std::mutex mutex;
    json stored = json::object();
    FileIdentity identity;
    /// Written here and not yet in the file; a null value stands for a removed key.
    std::map<std::string, json, std::less<>> unsaved;

    void refresh() {
        const FileIdentity now = FileIdentity::of(path);
        if (now == identity) return;
        stored = readObject(path);
        identity = now;
    }

    bool save() {
        const std::string folder = path.substr(0, path.find_last_of('/'));
        if (!createDirectories(folder, 0700)) return false;
        const FileLock lock(path + ".lock");
        if (!lock.isHeld()) return false;
        json merged = readForMerge(path);
        if (merged.is_discarded()) return false;
        for (const auto& [key, value] : unsaved) {
            if (value.is_null())
                merged.erase(key);
            else
                merged[key] = value;
        }
        const std::string text = merged.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
        if (!writeFileAtomically(path, text, 0600)) return false;
        stored = std::move(merged);
        identity = FileIdentity::of(path);
        unsaved.clear();
        return true;
    }
};

UserDefaults::UserDefaults(std::string path) : state_(std::make_unique<State>()) {
    state_->path = std::move(path);
}

UserDefaults::~UserDefaults() = default;

UserDefaults& UserDefaults::standardUserDefaults() {
    static NoDestructor<UserDefaults> instance(configHome() + "/VorlaFramework/" +
                                               HostIdentity::fileName() + ".json");
    return *instance;
}

std::optional<UserDefaults::Value> UserDefaults::objectForKey(std::string_view key) {
    const std::lock_guard lock(state_->mutex);
    if (const auto pending = state_->unsaved.find(key); pending != state_->unsaved.end())
        return valueOf(pending->second);
    state_->refresh();
    const auto found = state_->stored.find(std::string(key));
    return found == state_->stored.end() ? std::nullopt : valueOf(*found);
}

void UserDefaults::setObject(std::string_view key, Value value) {
    const std::lock_guard lock(state_->mutex);
    state_->unsaved[std::string(key)] = storedForm(value);
}

void UserDefaults::removeObjectForKey(std::string_view key) {
    const std::lock_guard lock(state_->mutex);
    state_->unsaved[std::string(key)] = nullptr;
}

bool UserDefaults::synchronize() {
    const LogHold hold;
    const std::lock_guard lock(state_->mutex);
    if (state_->unsaved.empty() || state_->save()) return true;
    VLLogError("cannot write preferences %s: %s", state_->path.c_str(), std::strerror(errno));
    return false;
}

}  // namespace vorla
