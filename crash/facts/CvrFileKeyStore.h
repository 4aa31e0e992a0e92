#pragma once

#include <map>

#include "crash/archive/StoreFolder.h"
#include "crash/facts/CvrKeyStore.h"

/// The key store where the desktop has none: a file that only the user can read.
class CvrFileKeyStore final : public CvrKeyStore {
 public:
    /// The file lies in the folder, which is made when it is needed.
    explicit CvrFileKeyStore(std::string folder) : folder_(std::move(folder)) {}

    std::optional<std::string> getPasswordForUsername(const std::string& username,
                                                      const std::string& andServiceName,
                                                      int* error = nullptr) override;
    bool storeUsername(const std::string& username, const std::string& andPassword,
                       const std::string& forServiceName, bool updateExisting,
                       int* error = nullptr) override;
    bool deleteItemForUsername(const std::string& username, const std::string& andServiceName,
                               int* error = nullptr) override;

    static constexpr const char* fileName = ".cvr_keys.data";

 private:
    /// From "service/account" to the password.
    using Items = std::map<std::string, std::string>;

    /// Calls `change` with what the file holds; it returns 0 to have it written, else the error.
    template <typename Change>
    int update(Change change);
    static Items read(const vorla::StoreFolder& folder);

    const std::string folder_;
};
