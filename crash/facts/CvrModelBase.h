#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <variant>

#include "crash/archive/StoreFolder.h"

/// The present time in ms since 1970.
using CvrClock = std::function<int64_t()>;

/// What the crash reporter says about the program and the machine, and a small dictionary that
/// outlives the process. Any thread.
class CvrModelBase {
 public:
    /// The facts, for reading and changing as a whole: `facts` and `change`.
    struct Facts {
        /// The application key.
        std::string appId;
        /// "short(build)", or the build alone.
        std::string appVersion;
        std::string bundleId;
        int32_t platformId = 4;
        std::string hardwareModel;
        std::string osVer;
        float osVerFloat = 0;
        std::string userid = "10000";
        /// The device identifier.
        std::string openudid;
        std::string gatewayIP = "unknown";
        std::string channel;
        std::string sdkVersion = "2.1.2";
        std::string sessionId;
        /// The version that this machine saw last.
        std::string localVer;
        /// The server's time minus ours, in ms.
        int64_t serverTimeDelta = 0;
        /// Times in ms since 1970; 0 for never.
        int64_t lastRecordTime = 0;
        int64_t startTime = 0;
        int64_t backGroundTime = 0;
        int64_t resumeTime = 0;
        bool isReet = false;
        int64_t processId = 0;
        int64_t parentProcId = 0;
        std::string processName;
        std::string parentProcName;
        std::string cpuArch;
        int64_t diskSize = 0;
        int64_t memSize = 0;
        std::string idfv;
        std::string country;
        std::string language;
        std::string pIdentity;
        /// A device identifier from the key store.
        std::string tavim;
    };
    using Value = std::variant<std::string, int64_t, bool>;

    static CvrModelBase& getDefualtAnaModel();

    /// `folder` holds the dictionary's file, unless `resetBundlePath` names another.
    CvrModelBase(std::string folder, CvrClock now);
    CvrModelBase(const CvrModelBase&) = delete;
    CvrModelBase& operator=(const CvrModelBase&) = delete;

    [[nodiscard]] Facts facts() const;
    /// Calls `change` with the facts while no one else uses them; it must not call back.
    void change(const std::function<void(Facts&)>& change);
    [[nodiscard]] int64_t now() const { return now_(); }

    /// Called after facts or the dictionary have changed, on the thread that did it and with no
    /// lock held. Set before other threads use the object.
    std::function<void()> onChange;

    /// Moves the dictionary's file to another folder, which is made when missing. One that cannot
    /// be had, or is not to be trusted, leaves the old place.
    void resetBundlePath(const std::string& path);
    /// Reads the file, once.
    void initBundleFile();

    /// Sets a value and writes the file at once.
    void persistKey(const std::string& key, Value value);
    /// Change the value in memory only.
    void setKey(const std::string& key, Value value);
    void unSetKey(const std::string& key);
    /// Writes what was changed since the last writing, over what the file holds then: another
    /// process's keys stay.
    void persistAllKey();
    [[nodiscard]] std::optional<Value> getKey(const std::string& key);
    /// The value as text, empty when there is none or it is none.
    [[nodiscard]] std::string textForKey(const std::string& key);

    /// The file as it would be written now, and its path.
    [[nodiscard]] std::string bundleFileBytes();
    [[nodiscard]] std::string bundleFilePath() const;

    /// Compares the version with the one seen last and notes a new one.
    void checkVer();
    /// Whether this process has seen the version change.
    [[nodiscard]] bool isVersionChanged() const;

    /// Marks that a crash leaves for the next start. Both read as none after a version change.
    bool hasLastCrashNeedReport();
    void persistLastCrashNeedReport(bool needed);
    int64_t getLastCrashTime();
    /// Stores a positive time only.
    void persistLastCrashTime(int64_t time);
    /// Whether the last run ended by a crash: decided once for the process, which clears the mark.
    bool isLastCloseByCrash();

    /// The folder of this user and host for all files of the crash reporter.
    static std::string defaultFolder();

    static constexpr const char* bundleFileName = ".cvrios.plist";

 private:
    using Dictionary = std::map<std::string, Value>;

    [[nodiscard]] std::optional<vorla::StoreFolder> openFolder() const;
    static Dictionary readDictionary(const vorla::StoreFolder& folder);
    void loadLocked();
    void writeLocked();
    template <typename Action>
    void changeKeys(Action action);

    const CvrClock now_;
    mutable std::mutex mutex_;
    Facts facts_;
    std::string folder_;
    vorla::StoreFolder::Origin origin_ = vorla::StoreFolder::Origin::Default;
    bool loaded_ = false;
    Dictionary dictionary_;
    /// Changed since the last writing.
    std::set<std::string> changedKeys_;
    bool versionChanged_ = false;
    std::optional<bool> lastCloseByCrash_;
};
