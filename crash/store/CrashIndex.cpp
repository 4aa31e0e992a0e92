#include "crash/store/CrashIndex.h"

#include <algorithm>
#include <cerrno>
#include <vector>

#include "crash/CvrLog.h"
#include "crash/facts/CvrDeviceUtil.h"

namespace vorla::crash_index {
namespace {

constexpr size_t largestIndex = size_t{4} * 1024 * 1024;
constexpr std::string_view fileSuffix = ".data";
/// More crashes than this within one second are not kept.
constexpr int mostInOneSecond = 100;

using Archives = std::map<std::string, std::vector<uint8_t>>;

bool isSound(const std::string& key, const CvrCrashMetaData& meta) {
    return !key.empty() && meta.md5 == key && isCrashFileName(meta.file);
}

CvrCrashMetaData metaOf(const CvrExpObj& crash, const std::string& file) {
    CvrCrashMetaData meta;
    meta.md5 = crash.hash;
    meta.file = file;
    meta.time = crash.time;
    meta.hasNew = true;
    return meta;
}

Entries rebuilt(const StoreFolder& folder) {
    Entries entries;
    for (const StoreFile& file : folder.list()) {
        if (!isCrashFileName(file.name)) continue;
        const auto bytes = folder.read(file.name, largestRecord);
        CvrExpObj crash;
        if (!bytes || !crash.decode(*bytes) || crash.hash.empty()) continue;
        entries.try_emplace(crash.hash, metaOf(crash, file.name));
    }
    return entries;
}

}  // namespace

bool isCrashFileName(std::string_view name) {
    return name.starts_with(filePrefix) && name.ends_with(fileSuffix) && name != indexName &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

Entries read(const StoreFolder& folder) {
    Entries entries;
    const auto bytes = folder.read(indexName, largestIndex);
    if (!bytes && errno == ENOENT) return entries;
    const auto archives = bytes ? valueFromData<Archives>(asBytes(*bytes)) : std::nullopt;
    if (!archives) {
        CvrLogError("<ERROR> CVR: the index of crashes is unreadable, it is made from the files");
        return rebuilt(folder);
    }
    for (const auto& [key, archive] : *archives) {
        auto meta = valueFromData<CvrCrashMetaData>(archive);
        if (meta && isSound(key, *meta)) entries.emplace(key, std::move(*meta));
    }
    return entries;
}

bool write(const StoreFolder& folder, const Entries& entries) {
    Archives archives;
    for (const auto& [key, meta] : entries) {
        const auto data = meta.encodeData();
        archives.emplace(key, std::vector<uint8_t>(data.begin(), data.end()));
    }
    return folder.write(indexName, archivedData(archives));
}

std::optional<CvrExpObj> record(const StoreFolder& folder, const CvrCrashMetaData& meta) {
    if (!isCrashFileName(meta.file)) return std::nullopt;
    const auto bytes = folder.read(meta.file, largestRecord);
    CvrExpObj crash;
    if (!bytes || !crash.decode(*bytes) || crash.hash != meta.md5) return std::nullopt;
    return crash;
}

std::string storeUnderNewName(const StoreFolder& folder, int64_t cashTime, std::string_view data) {
    const std::string stem = filePrefix + CvrDeviceUtil::getFullTimeFileStrBy(cashTime / 1000);
    for (int count = 0; count < mostInOneSecond; ++count) {
        std::string name = stem;
        if (count > 0) name += "-" + std::to_string(count);
        name += fileSuffix;
        if (folder.write(name, data, true)) return name;
        if (errno != EEXIST) break;
    }
    return {};
}

void enforceBounds(const StoreFolder& folder, Entries& entries) {
    std::map<std::string, size_t> sizes;
    for (const StoreFile& file : folder.list()) sizes[file.name] = file.size;
    std::vector<const CvrCrashMetaData*> byTime;
    for (const auto& [key, meta] : entries) byTime.push_back(&meta);
    std::ranges::sort(byTime, std::greater(), &CvrCrashMetaData::time);
    size_t kept = 0;
    size_t bytes = 0;
    std::vector<std::string> beyond;
    for (const CvrCrashMetaData* meta : byTime) {
        bytes += sizes[meta->file];
        if (++kept > mostCrashes || bytes > mostBytes) beyond.push_back(meta->md5);
    }
    for (const std::string& key : beyond) {
        folder.remove(entries.at(key).file);
        entries.erase(key);
    }
}

}  // namespace vorla::crash_index
