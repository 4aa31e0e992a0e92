#pragma once

#include <map>
#include <string>
#include <string_view>

#include "crash/archive/StoreFolder.h"
#include "crash/records/CvrCrashMetaData.h"
#include "crash/records/CvrExpObj.h"

namespace vorla {

/// The index of stored crashes as it is on disk, and the crash files that it names. All operations
/// on a folder whose lock the caller holds; no state of its own.
namespace crash_index {

using Entries = std::map<std::string, CvrCrashMetaData>;

inline constexpr const char* indexName = ".crash_meta.data";
/// What names of all crash files, and of the index, begin with.
inline constexpr const char* filePrefix = ".crash_";

/// The bounds of a store: what is beyond goes at the next start, the oldest first.
inline constexpr size_t mostCrashes = 100;
inline constexpr size_t mostBytes = size_t{64} * 1024 * 1024;
/// A larger file is no record of ours.
inline constexpr size_t largestRecord = size_t{16} * 1024 * 1024;

/// Whether it can be the name of a crash file, whoever has written it.
bool isCrashFileName(std::string_view name);

/// The sound entries. An index that cannot be understood is made anew from the crash files.
Entries read(const StoreFolder& folder);
bool write(const StoreFolder& folder, const Entries& entries);

/// The crash that an entry names; none when its file is missing, unreadable or another crash's.
std::optional<CvrExpObj> record(const StoreFolder& folder, const CvrCrashMetaData& meta);

/// Stores a crash under a name of its own, made from its time: nothing is overwritten. Returns the
/// name, or empty when it cannot be written.
std::string storeUnderNewName(const StoreFolder& folder, int64_t cashTime, std::string_view data);

/// Drops the oldest entries, and their files, until the bounds are kept.
void enforceBounds(const StoreFolder& folder, Entries& entries);

}  // namespace crash_index
}  // namespace vorla
