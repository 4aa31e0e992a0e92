#pragma once

#include <cstdint>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

/// Counts what the user does. The counters live in memory and in a file at once: each event
/// rewrites the whole file, which is small, so that nothing is lost when the host ends in whatever
/// way.
///
/// The file is a dictionary from the event's number in decimal to how often it came; a reader finds
/// the state before or after an event, never something between. A file that cannot be written costs
/// nothing but its existence; one that cannot be understood is put aside with ".broken" added to
/// its name. Of two processes of one host, the one that writes last wins. Any thread; a forked
/// child may use it too.
class VLStatisticManager {
 public:
    static VLStatisticManager& defaultStatisticManager();

    /// Counters in another place: the file's folder, and a file that moves there at first use.
    VLStatisticManager(std::string folder, std::string oldPath);
    VLStatisticManager(const VLStatisticManager&) = delete;
    VLStatisticManager& operator=(const VLStatisticManager&) = delete;

    /// Adds 1 to the counter, unless it holds something that is no number.
    void statisticEvent(uint64_t event);
    /// Stores a number or a text as it is; none removes the counter.
    void statisticEvent(uint64_t event, const std::optional<nlohmann::json>& withValue);

    /// The counters and, under the keys 1018 to 1023, facts about settings, machine and version.
    /// Those are made anew by each call and never stored.
    [[nodiscard]] nlohmann::json statInfo();

    /// Starts again from nothing. An event of another thread counts before or after, not halfway.
    void resetStatistic();
    /// Removes the file.
    void clearStatInfo();
    /// Takes over what the file holds.
    void updateStatInfo();
    /// Writes the file.
    void synchronizeStatInfo();

    /// The file. The first call makes its folder and moves an old file there.
    [[nodiscard]] std::string statFilePath();

    /// A number of whatever kind as an unsigned one, cut towards zero and kept within the range; a
    /// negative whole number wraps. None for what is no number.
    static std::optional<uint64_t> unsignedIntegerValue(const nlohmann::json& value);

    /// The folder of the default manager: private to the user, one for each host.
    static std::string statFolderPath();

 private:
    // The operations of the same names, for a caller that holds the lock.
    void synchronizeLocked();
    void updateLocked();
    void clearLocked();
    const std::string& statFilePathLocked();
    void moveOldFile(const std::string& newPath) const;
    static void guardForks();

    const std::string folder_;
    const std::string oldPath_;
    std::mutex mutex_;
    nlohmann::json statInfoDic_ = nlohmann::json::object();
    std::string statFilePath_;
};
