// Single crashes: stored, changed, found, deleted.
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "crash/CvrLog.h"
#include "crash/facts/CvrDeviceUtil.h"
#include "crash/store/CvrFilePersistHandler.h"

namespace crash_index = vorla::crash_index;
using vorla::StoreFolder;

bool CvrFilePersistHandler::persistAllCrashMetaDatas() {
    const std::lock_guard guard(mutex_);
    const auto folder = openFolder();
    return folder && crash_index::write(*folder, allCrashMetas_);
}

bool CvrFilePersistHandler::hasCrash() const {
    const std::lock_guard guard(mutex_);
    return !allCrashMetas_.empty();
}

size_t CvrFilePersistHandler::storedCrashCount() const {
    const auto folder = openFolder();
    return folder ? crash_index::read(*folder).size() : 0;
}

bool CvrFilePersistHandler::saveOneCrash(const CvrExpObj& exp) {
    const std::string data = vorla::archivedData(exp);
    if (exp.hash.empty() || data.size() > crash_index::largestRecord) {
        CvrLogError("<ERROR> CVR: **CVR File Persist**faield to save crash in encoding");
        return false;
    }
    // What an older version has left must be gone before, or this one would go with it.
    loadAllDatas();
    bool saved = false;
    std::string file;
    const bool written = changeIndex([&](const StoreFolder& folder) {
        file = crash_index::storeUnderNewName(folder, exp.cashTime, data);
        saved = !file.empty();
        if (saved)
            allCrashMetas_[exp.hash] = {
                .md5 = exp.hash, .file = file, .time = exp.time, .hasNew = true, .uplaoded = false};
        return saved;
    });
    if (!saved || !written) {
        CvrLogError("<ERROR> CVR: **CVR File Persist**failed sace crash to path %s", file.c_str());
        return false;
    }
    CvrLogInfo("<INFO> CVR: **CVR File Persist**SAVED one crash with uid %s and md5 %s to path %s",
               exp.expUid.c_str(), exp.hash.c_str(), file.c_str());
    return true;
}

bool CvrFilePersistHandler::updateOneCrash(const CvrExpObj& exp) {
    bool uplaoded = false;
    changeIndex([&](const StoreFolder&) {
        const auto found = allCrashMetas_.find(exp.hash);
        if (found != allCrashMetas_.end()) uplaoded = found->second.uplaoded;
        return false;
    });
    return updateOneCrash(exp, uplaoded);
}

bool CvrFilePersistHandler::updateOneCrash(const CvrExpObj& exp, bool uplaoded) {
    const std::string data = vorla::archivedData(exp);
    bool updated = false;
    const bool written = changeIndex([&](const StoreFolder& folder) {
        const auto found = allCrashMetas_.find(exp.hash);
        if (found == allCrashMetas_.end()) {
            CvrLogError("<ERROR> CVR: error update crash for meta is nil");
            return false;
        }
        CvrCrashMetaData& meta = found->second;
        updated = data.size() <= crash_index::largestRecord && folder.write(meta.file, data);
        if (!updated) {
            CvrLogError("<ERROR> CVR: **CVR File Persist**failed Update crash to path %s",
                        meta.file.c_str());
            return false;
        }
        meta.hasNew = exp.dcount != 0;
        meta.uplaoded = uplaoded;
        meta.time = exp.time;
        CvrLogInfo("<INFO> CVR: **CVR File Persist**Update one crash with uid %s md5 %s to path %s",
                   exp.expUid.c_str(), exp.hash.c_str(), meta.file.c_str());
        return true;
    });
    return updated && written;
}

bool CvrFilePersistHandler::deleteLocked(const StoreFolder& folder,
                                         const std::vector<std::string>& hashes) {
    bool deleted = true;
    std::vector<std::string> files;
    for (const std::string& hash : hashes) {
        const auto found = allCrashMetas_.find(hash);
        if (found != allCrashMetas_.end()) {
            files.push_back(found->second.file);
            allCrashMetas_.erase(found);
            continue;
        }
        CvrLogError("<ERROR> CVR: faield delete crash with hash %s", hash.c_str());
        deleted = false;
    }
    // The entries go first: a file without one is never sent, and removed at the next start.
    if (!files.empty() && !crash_index::write(folder, allCrashMetas_)) return false;
    for (const std::string& file : files) {
        if (folder.remove(file)) continue;
        CvrLogError("<ERROR> CVR: remove crash file when delete meta failed %s",
                    std::strerror(errno));
        deleted = false;
    }
    return deleted;
}

bool CvrFilePersistHandler::deleteHashes(const std::vector<std::string>& hashes) {
    bool deleted = false;
    changeIndex([&](const StoreFolder& folder) {
        deleted = deleteLocked(folder, hashes);
        return false;
    });
    return deleted;
}

bool CvrFilePersistHandler::deleteCrashMeta(const CvrCrashMetaData& meta) {
    return deleteHashes({meta.md5});
}

bool CvrFilePersistHandler::deleteCrash(const std::optional<CvrExpObj>& exp) {
    if (!exp) {
        CvrLogError("<ERROR> CVR: faield delete crash with nil exp");
        return false;
    }
    return deleteHashes({exp->hash});
}

bool CvrFilePersistHandler::deleteCrashes(const std::vector<CvrExpObj>& exps) {
    if (exps.empty()) {
        CvrLogError("<ERROR> CVR: faield delete crashes with nil exps");
        return false;
    }
    std::vector<std::string> hashes;
    for (const CvrExpObj& exp : exps) hashes.push_back(exp.hash);
    return deleteHashes(hashes);
}

std::optional<CvrExpObj> CvrFilePersistHandler::getByMeta(const CvrCrashMetaData& meta) const {
    const std::lock_guard guard(mutex_);
    const auto folder = openFolder();
    return folder ? crash_index::record(*folder, meta) : std::nullopt;
}

std::optional<CvrExpObj> CvrFilePersistHandler::decodeOrDrop(
    const std::function<const CvrCrashMetaData*()>& choose) {
    std::optional<CvrExpObj> crash;
    changeIndex([&](const StoreFolder& folder) {
        const CvrCrashMetaData* meta = choose();
        if (!meta) return false;
        crash = crash_index::record(folder, *meta);
        if (!crash) deleteLocked(folder, {meta->md5});
        return false;
    });
    return crash;
}

std::optional<CvrExpObj> CvrFilePersistHandler::getLatestCrash() {
    return decodeOrDrop([&] {
        const CvrCrashMetaData* latest = nullptr;
        for (const auto& [key, meta] : allCrashMetas_)
            if (!latest || meta.time > latest->time) latest = &meta;
        return latest;
    });
}

std::optional<CvrExpObj> CvrFilePersistHandler::getCrashWithMd5(const std::string& md5) {
    return decodeOrDrop([&]() -> const CvrCrashMetaData* {
        const auto found = allCrashMetas_.find(md5);
        return found == allCrashMetas_.end() ? nullptr : &found->second;
    });
}

std::vector<CvrExpObj> CvrFilePersistHandler::getAllCrashed(int32_t limit) {
    std::vector<CvrExpObj> crashes;
    changeIndex([&](const StoreFolder& folder) {
        std::vector<std::string> undecodable;
        for (const auto& [key, meta] : allCrashMetas_) {
            if (crashes.size() >= static_cast<size_t>(std::max(limit, 0))) break;
            if (auto crash = crash_index::record(folder, meta))
                crashes.push_back(std::move(*crash));
            else
                undecodable.push_back(key);
        }
        deleteLocked(folder, undecodable);
        return false;
    });
    return crashes;
}

template <typename Filter>
std::vector<CvrExpObj> CvrFilePersistHandler::decoded(Filter filter) {
    std::vector<CvrExpObj> crashes;
    changeIndex([&](const StoreFolder& folder) {
        for (const auto& [key, meta] : allCrashMetas_) {
            if (!filter(meta)) continue;
            if (auto crash = crash_index::record(folder, meta))
                crashes.push_back(std::move(*crash));
        }
        return false;
    });
    return crashes;
}

std::vector<CvrExpObj> CvrFilePersistHandler::getCrashesNeedDel() {
    const int64_t today = CvrDeviceUtil::getTimeOfTodayStart(model_.now());
    return decoded([&](const CvrCrashMetaData& meta) { return !meta.hasNew && meta.time < today; });
}

std::vector<CvrExpObj> CvrFilePersistHandler::getCrashesNeedUpload(int32_t limit) {
    if (limit < 1) return {};
    const int64_t today = CvrDeviceUtil::getTimeOfTodayStart(model_.now());
    return decoded([&](const CvrCrashMetaData& meta) {
        return !meta.uplaoded || (meta.time < today && meta.hasNew);
    });
}
