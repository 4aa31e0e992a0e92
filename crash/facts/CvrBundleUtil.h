#pragma once

#include <memory>
#include <string>

#include "crash/facts/CvrKeyStore.h"

class CvrModelBase;

/// Facts about the host and the identifiers of this installation. Any thread.
class CvrBundleUtil {
 public:
    /// Of the host as it is known here: its program's name, its display name, the version that the
    /// information dictionary holds.
    static std::string getBundleId();
    static std::string getBundleName();
    static std::string getBundleVersion();
    static std::string getBundleShortVer();
    static std::string getBundleExe();
    /// The build's product identifier, or empty.
    static std::string getSBKCIBuildUUID();

    static std::string createOpenUdid();
    /// The device identifier: from the model's dictionary, else from the key store, else a new one
    /// that is then stored in both. May wait for the key store: not for the main thread.
    static std::string getAnaOpenUdid(CvrModelBase& model, CvrKeyStore& keys);
    /// A second identifier, that only others store; empty when there is none. May wait as well.
    static std::string getTavim(CvrModelBase& model, CvrKeyStore& keys);
};
