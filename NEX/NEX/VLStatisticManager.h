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
/// the state before or after an event, never something between. It is read at the first use. One
/// that was read and is no such dictionary, or is larger than counters ever are, is put aside with
/// ".broken" added to its name. One that cannot be read just now (no rights, no descriptors left)
/// is left alone: counting goes on in memory and is added to it once it can be read. A file that
/// cannot be written costs nothing but its existence, a folder that no longer exists is made again.
/// Of two processes of one host, the one that writes last wins.
///
/// Any thread; a forked child may use it too. Nothing is logged while the counters are locked.
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
    class Access;
    // For a caller that holds the lock.
    void synchronizeLocked();
    void updateLocked();
    void clearLocked();
    const std::string& statFilePathLocked();
    bool load();
    void addStored(nlohmann::json stored);
    void moveOldFile(const std::string& newPath) const;
    static void guardForks();

    const std::string folder_;
    const std::string oldPath_;
    std::mutex mutex_;
    nlohmann::json statInfoDic_ = nlohmann::json::object();
    /// Whether `statInfoDic_` holds what the file held; until then only what was counted since.
    bool loaded_ = false;
    bool loggedUnreadable_ = false;
    std::string statFilePath_;
};
