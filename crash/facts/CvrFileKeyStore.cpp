#include "crash/facts/CvrFileKeyStore.h"

#include <cerrno>

#include "crash/archive/RecordArchive.h"

namespace {

using vorla::StoreFolder;

constexpr size_t largestFile = size_t{64} * 1024;
constexpr std::chrono::milliseconds longestWait(200);

bool report(int code, int* error) {
    if (error) *error = code;
    return code == 0;
}

}  // namespace

CvrFileKeyStore::Items CvrFileKeyStore::read(const StoreFolder& folder) {
    const auto bytes = folder.read(fileName, largestFile);
    if (!bytes) return {};
    return vorla::valueFromData<Items>(vorla::asBytes(*bytes)).value_or(Items());
}

template <typename Change>
int CvrFileKeyStore::update(Change change) {
    const auto folder = StoreFolder::open(folder_, StoreFolder::Origin::Default);
    if (!folder) return errno;
    const auto lock = folder->lock(longestWait);
    Items items = read(*folder);
    if (const int code = change(items); code != 0) return code;
    return folder->write(fileName, vorla::archivedData(items)) ? 0 : errno;
}

std::optional<std::string> CvrFileKeyStore::getPasswordForUsername(
    const std::string& username, const std::string& andServiceName, int* error) {
    report(username.empty() || andServiceName.empty() ? errorAbsentArgument : 0, error);
    const auto folder = StoreFolder::open(folder_, StoreFolder::Origin::Default);
    if (!folder) return std::nullopt;
    const Items items = read(*folder);
    const auto found = items.find(andServiceName + "/" + username);
    return found == items.end() ? std::nullopt : std::optional(found->second);
}

bool CvrFileKeyStore::storeUsername(const std::string& username, const std::string& andPassword,
                                    const std::string& forServiceName, bool updateExisting,
                                    int* error) {
    if (username.empty() || andPassword.empty() || forServiceName.empty())
        return report(errorAbsentArgument, error);
    const std::string key = forServiceName + "/" + username;
    const int code = update([&](Items& items) {
        if (!updateExisting && items.count(key) > 0) return EEXIST;
        items[key] = andPassword;
        return 0;
    });
    return report(code, error);
}

bool CvrFileKeyStore::deleteItemForUsername(const std::string& username,
                                            const std::string& andServiceName, int* error) {
    if (username.empty() || andServiceName.empty()) return report(errorAbsentArgument, error);
    const int code = update([&](Items& items) {
        return items.erase(andServiceName + "/" + username) > 0 ? 0 : ENOENT;
    });
    return report(code, error);
}
