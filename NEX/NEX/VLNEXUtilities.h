#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// Facts about the machine and the framework, for the services. Versions and the like come from the
/// framework's own information dictionary, not from the host's. Any thread.
class VLNEXUtilities {
 public:
    /// Identifies this machine, always the same text here: made from the system's machine
    /// identifier so that nobody can get back to that, or, where there is none, a random one that
    /// is kept in the given folder. None when that cannot be kept either.
    static std::optional<std::string> UUID(const std::string& keptInFolder);

    /// "CFBundleShortVersionString", or "1.0.0".
    static std::string version();
    /// The first two characters of the version without its dots; "00" when there are fewer.
    static std::string bundleShortVersion();
    /// "CFBundleVersion", or "10560".
    static std::string buildVersion();
    /// "version(build)".
    static std::string formattedVersion();
    /// The value of "SupplyID"; empty when there is none.
    static std::string supplyID();
    /// The first of "CFBundleSupportedPlatforms"; empty when there is none.
    static std::string operatingSystem();
    /// Up to four numbers of "CFBundleShortVersionString", 16 bits each, the first one highest.
    static int64_t clientVersion();
    /// "major.minor.patch" of the distribution, or of the kernel where the distribution has no
    /// version numbers.
    static std::string operatingSystemVersion();
    /// The user's first preferred language, as "zh-Hans".
    static std::string operatingSystemLanguage();
    static uint16_t operatingSystemDigit() { return 64; }
};

namespace vorla {

/// Where `VLNEXUtilities::UUID` looks, and what it does with it. `machineIdPath` holds the system's
/// identifier (32 hexadecimal digits, see machine-id(5)), `keptPath` is where the random one is.
std::optional<std::string> machineIdentity(const std::string& machineIdPath,
                                           const std::string& keptPath);

/// The three numbers of a text like "12.11", missing ones 0; none when it starts with no digit.
std::optional<std::string> threeNumbers(const std::string& text);

}  // namespace vorla
