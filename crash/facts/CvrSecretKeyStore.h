#pragma once

#include <atomic>

#include "crash/facts/CvrKeyStore.h"

/// The desktop's Secret Service where one answers and its keyring is open, else another store. What
/// the other store holds is copied to the service when it is asked for, and stays readable there
/// should the service go away.
///
/// A program of its own does the asking, and is waited for 3 seconds at most. A service that was
/// once not to be had is not asked again by this object.
class CvrSecretKeyStore final : public CvrKeyStore {
 public:
    /// `program` stands for the framework's own one when empty.
    explicit CvrSecretKeyStore(CvrKeyStore& otherwise, std::string program = "")
        : otherwise_(otherwise), program_(std::move(program)) {}

    std::optional<std::string> getPasswordForUsername(const std::string& username,
                                                      const std::string& andServiceName,
                                                      int* error = nullptr) override;
    bool storeUsername(const std::string& username, const std::string& andPassword,
                       const std::string& forServiceName, bool updateExisting,
                       int* error = nullptr) override;
    bool deleteItemForUsername(const std::string& username, const std::string& andServiceName,
                               int* error = nullptr) override;

 private:
    /// What the program prints; empty when the service is not to be had.
    std::string ask(const char* verb, const std::string& service, const std::string& account,
                    const std::string& password = "");

    CvrKeyStore& otherwise_;
    const std::string program_;
    std::atomic<bool> answers_ = true;
};
