#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "crash/facts/CvrModelBase.h"
#include "crash/records/CvrLocalStrategy.h"
#include "crash/records/CvrSummaryInfo.h"
#include "crash/store/CrashIndex.h"

/// The disk side of the crash reporter: crashes with their index, user records, the strategy.
///
/// Several processes of one host may use a folder at once: whatever depends on the index or the
/// user records takes them from disk first, and changes are made under a lock on the folder. What
/// cannot be read counts as absent. Any thread; may wait for the disk and, 5 seconds at most, for
/// another process, which is no longer waited for then.
class CvrFilePersistHandler {
 public:
    static CvrFilePersistHandler& sharedInstance();

    CvrFilePersistHandler(std::string folder, CvrModelBase& model);
    CvrFilePersistHandler(const CvrFilePersistHandler&) = delete;
    CvrFilePersistHandler& operator=(const CvrFilePersistHandler&) = delete;

    /// Moves the store: the folder is made when missing, what has been loaded stays, nothing is
    /// moved. False, and the old place, when there can be no folder or it is not to be trusted.
    bool changeDbPath(const std::string& path);

    /// Loads index and user records, once; after a version change removes them instead. Also tidies
    /// up: unfinished files go, and what is beyond the store's bounds.
    void loadAllDatas();
    /// Load the strategy, once; the second returns it, or null.
    void loadStrategys();
    std::shared_ptr<const CvrLocalStrategy> loadCommonStrategyFile();
    /// Keeps the strategy and writes it. Always returns false.
    bool saveCommonStrategy(const CvrLocalStrategy& strategy);

    bool persistAllCrashMetaDatas();
    /// Whether there are crashes, as far as is known without looking at the disk again.
    [[nodiscard]] bool hasCrash() const;
    /// How many crashes the index on disk names.
    [[nodiscard]] size_t storedCrashCount() const;

    /// Stores a new crash and its entry.
    bool saveOneCrash(const CvrExpObj& exp);
    /// Stores a changed crash in the place of the old one. It has something new when its `dcount`
    /// is not 0. The first form keeps whether it was sent.
    bool updateOneCrash(const CvrExpObj& exp);
    bool updateOneCrash(const CvrExpObj& exp, bool uplaoded);

    /// Removes all crash files, the index among them.
    void deleteAllCrashes();
    /// Removes the crash files that the index does not name.
    void deleteAllInvalidCrashes();
    bool deleteCrashMeta(const CvrCrashMetaData& meta);
    /// False when there is nothing to delete or the crash is not known.
    bool deleteCrash(const std::optional<CvrExpObj>& exp);
    bool deleteCrashes(const std::vector<CvrExpObj>& exps);

    /// Decoded crashes. An entry whose file cannot be decoded is dropped with it.
    std::optional<CvrExpObj> getLatestCrash();
    std::optional<CvrExpObj> getCrashWithMd5(const std::string& md5);
    std::vector<CvrExpObj> getAllCrashed(int32_t limit);
    /// Nothing new in them, and from before today.
    std::vector<CvrExpObj> getCrashesNeedDel();
    /// None for an argument below 1, else all that were never sent, or were sent on an earlier day
    /// and have something new. Undecodable ones are skipped and kept.
    std::vector<CvrExpObj> getCrashesNeedUpload(int32_t limit);
    std::optional<CvrExpObj> getByMeta(const CvrCrashMetaData& meta) const;

    /// Adds a user record, in memory only.
    bool saveOneData(const CvrSummaryInfo& info);
    bool deleteDatas(const std::vector<CvrSummaryInfo>& infos);
    [[nodiscard]] std::vector<CvrSummaryInfo> getAllDatas() const;
    [[nodiscard]] size_t getCurrSize() const;
    /// Takes the records from disk again, with those that were not written yet.
    void refreshUserInfoDatas();
    /// Writes the user records if they have changed.
    void persistAllUserInfoDatas();

    /// The right to send the one or the other: only one process has it at a time. Empty when
    /// another one does. Whoever has it must look at the store again, and may not ask for the same
    /// one twice.
    vorla::StoreLock claim(const std::string& name);
    static constexpr const char* crashClaim = ".crashes.lock";
    static constexpr const char* userInfoClaim = ".users.lock";

    /// Paths and contents for the crash handler, which writes them itself. Waits for no disk.
    struct Prepared {
        std::string folder;
        /// Empty when the file on disk is up to date.
        std::string userInfoBytes;
    };
    [[nodiscard]] Prepared prepared() const;

    /// Called after the user records or the folder have changed, with no lock held. Set before
    /// other threads use the object.
    std::function<void()> onChange;

    static constexpr const char* userInfoName = ".user_info.data";
    static constexpr const char* strategyName = ".new_strategy.data";

 private:
    /// For another process, which then is stopped or has died on a disk that hangs: its lock counts
    /// no more.
    static constexpr std::chrono::seconds longestWait{5};

    using Entries = vorla::crash_index::Entries;

    [[nodiscard]] std::optional<vorla::StoreFolder> openFolder() const;
    void changed() const {
        if (onChange) onChange();
    }
    /// Calls `action` with the folder while it is locked and the entries are those on disk; true
    /// from it has the entries written. False when there is no folder, or writing fails.
    bool changeIndex(const std::function<bool(const vorla::StoreFolder&)>& action);
    bool deleteLocked(const vorla::StoreFolder& folder, const std::vector<std::string>& hashes);
    bool deleteHashes(const std::vector<std::string>& hashes);
    std::optional<CvrExpObj> decodeOrDrop(const std::function<const CvrCrashMetaData*()>& choose);
    template <typename Filter>
    std::vector<CvrExpObj> decoded(Filter filter);
    void removeOldVersion(const vorla::StoreFolder& folder);
    void removeCrashFiles(const vorla::StoreFolder& folder);
    static std::vector<CvrSummaryInfo> readUserInfos(const vorla::StoreFolder& folder);
    void mergeUserInfosLocked(const vorla::StoreFolder& folder);
    void noteForHandlerLocked();

    CvrModelBase& model_;
    mutable std::recursive_mutex mutex_;
    std::string folder_;
    vorla::StoreFolder::Origin origin_ = vorla::StoreFolder::Origin::Default;
    Entries allCrashMetas_;
    std::vector<CvrSummaryInfo> allUserInfos_;
    /// Added and deleted since the file was written last.
    std::vector<CvrSummaryInfo> unsavedUserInfos_;
    std::vector<CvrSummaryInfo> deletedUserInfos_;
    bool userinfoChanged_ = false;
    bool dataLoaded_ = false;
    std::shared_ptr<const CvrLocalStrategy> commonStrategyData_;
    bool strategyLoaded_ = false;
    /// Of what is left, and of folder and origin as well.
    mutable std::mutex preparedMutex_;
    Prepared prepared_;
};
