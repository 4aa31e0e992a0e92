#pragma once

#include <optional>
#include <string>

/// A place for small secrets that outlives the program's own files. Operations may wait for another
/// process: never call them on the main thread. Any other thread.
class CvrKeyStore {
 public:
    /// The error of an absent argument.
    static constexpr int errorAbsentArgument = -2000;
    static constexpr const char* errorDomain = "CVRKeychainUtilsErrorDomain";

    virtual ~CvrKeyStore() = default;

    /// None when there is none. `error`, which may be null, receives 0 or a code of the domain
    /// above: `errorAbsentArgument`, or an errno.
    virtual std::optional<std::string> getPasswordForUsername(const std::string& username,
                                                              const std::string& andServiceName,
                                                              int* error = nullptr) = 0;
    /// With `updateExisting` false an entry that is there already stays (EEXIST).
    virtual bool storeUsername(const std::string& username, const std::string& andPassword,
                               const std::string& forServiceName, bool updateExisting,
                               int* error = nullptr) = 0;
    virtual bool deleteItemForUsername(const std::string& username,
                                       const std::string& andServiceName, int* error = nullptr) = 0;
};
