#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "platform/base/raii.h"

/// The crash in progress, and what the host has said about the session before it. Any thread;
/// whatever is set here is at once in the place where a crash finds it.
class CvrCrashData {
 public:
    static CvrCrashData& sharedInstance();

    CvrCrashData(const CvrCrashData&) = delete;
    CvrCrashData& operator=(const CvrCrashData&) = delete;

    /// Keeps an event of 1 to 200 characters; of more than 100 events the oldest goes.
    void appendSessionEvent(const std::string& event);
    void addUserMapData(const std::string& key, const std::string& val);
    /// Stored as "C01" and "C02".
    void setScene(uint64_t scene);
    void setSdkScene(uint64_t scene);
    /// Stored under "C03_" + key. A key of more than 50 characters or a value of more than 200, a
    /// key of other characters than letters and digits, or a value when there are 15 scene entries
    /// already are refused.
    void addSceneValue(const std::string& value, const std::string& forKey);
    /// The same under "C04_" without the limits on length and number.
    void addSdkSceneValue(const std::string& value, const std::string& forKey);

    /// The crash that is under way, for the host's function, or else the latest caught error: type,
    /// reason, report (none for a caught error) and stack. Empty texts when there is neither.
    [[nodiscard]] static std::string type();
    [[nodiscard]] static std::string error();
    [[nodiscard]] static std::string crashlog();
    [[nodiscard]] static std::string crashStack();

 private:
    CvrCrashData();
    template <typename T>
    friend class vorla::NoDestructor;

    void putScene(const std::string& key, const std::string& value);

    std::mutex mutex_;
    std::vector<std::string> events_;
    std::map<std::string, std::string> userMaps_;
    std::map<std::string, std::string> sceneData_;
};
