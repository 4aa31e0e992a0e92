#include "NEX/NEX/VLNEXUtilities.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <nlohmann/json.hpp>
#include <sstream>

#include "NEX/common/CCCrypt/CryptData.h"
#include "NEX/common/CCCrypt/evp.h"
#include "platform/base/Bundle.h"
#include "platform/base/files.h"
#include "platform/base/raii.h"

namespace {

using vorla::Bundle;

std::string shortVersion() {
    return Bundle::framework().infoString("CFBundleShortVersionString");
}

/// Leading digits as a number that wraps at 16 bits, 0 when there are none.
uint64_t sixteenBits(std::string_view text) {
    uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number & 0xFFFFU;
}

/// The form that such identifiers have: groups of 8, 4, 4, 4 and 12 digits, marked as version 4
/// (RFC 4122) since the bits mean nothing.
std::string uuidText(std::array<uint8_t, 16> bytes) {
    bytes[6] = static_cast<uint8_t>((bytes[6] & 0x0FU) | 0x40U);
    bytes[8] = static_cast<uint8_t>((bytes[8] & 0x3FU) | 0x80U);
    std::string text = Ozu_hexString(bytes);
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'a' ? static_cast<char>(c - 32) : c; });
    for (const size_t place : {20U, 16U, 12U, 8U}) text.insert(place, "-");
    return text;
}

std::string firstLine(const std::string& path) {
    const std::string text = vorla::readFile(path).value_or("");
    return text.substr(0, text.find('\n'));
}

bool isMachineId(std::string_view text) {
    const auto isDigit = [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); };
    return text.size() == 32 && std::ranges::all_of(text, isDigit) &&
           text.find_first_not_of('0') != std::string_view::npos;
}

bool isKeptIdentity(std::string_view text) {
    const auto fits = [](char c) {
        return c == '-' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
    };
    return text.size() == 36 && std::ranges::all_of(text, fits);
}

/// The kept identity, made at the first time. Of several processes that make it at once, all get
/// that of the one which was first to link it into place.
std::optional<std::string> keptIdentity(const std::string& path) {
    if (const std::string kept = firstLine(path); isKeptIdentity(kept)) return kept;
    std::array<uint8_t, 16> random = {};
    if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size()))
        return std::nullopt;
    const size_t slash = path.find_last_of('/');
    if (!vorla::createDirectories(path.substr(0, slash), 0700)) return std::nullopt;
    const std::string made = path + "." + std::to_string(::getpid());
    if (!vorla::writeFileAtomically(made, uuidText(random) + "\n", 0600)) return std::nullopt;
    if (::link(made.c_str(), path.c_str()) != 0 && errno == EEXIST &&
        !isKeptIdentity(firstLine(path)))
        ::rename(made.c_str(), path.c_str());
    ::unlink(made.c_str());
    const std::string kept = firstLine(path);
    return isKeptIdentity(kept) ? std::optional(kept) : std::nullopt;
}

}  // namespace

std::optional<std::string> vorla::machineIdentity(const std::string& machineIdPath,
                                                  const std::string& keptPath) {
    // Whoever sees the result cannot derive the system's identifier from it, nor what other
    // programs have made of it.
    static constexpr std::string_view salt = "VorlaFramework machine identity 1:";
    const std::string machineId = firstLine(machineIdPath);
    if (!isMachineId(machineId)) return keptIdentity(keptPath);
    const std::string salted = std::string(salt) + machineId;
    const auto hash = runDigest(
        "SHA256", ByteView(reinterpret_cast<const uint8_t*>(salted.data()), salted.size()));
    if (!hash) return std::nullopt;
    std::array<uint8_t, 16> bytes = {};
    std::copy_n(hash->begin(), bytes.size(), bytes.begin());
    return uuidText(bytes);
}

std::optional<std::string> vorla::threeNumbers(const std::string& text) {
    if (text.empty() || text[0] < '0' || text[0] > '9') return std::nullopt;
    std::istringstream parts(text);
    std::string result;
    for (int i = 0; i < 3; ++i) {
        std::string part;
        std::getline(parts, part, '.');
        uint32_t number = 0;
        std::from_chars(part.data(), part.data() + part.size(), number);
        result += (i > 0 ? "." : "") + std::to_string(number);
    }
    return result;
}

std::optional<std::string> VLNEXUtilities::UUID(const std::string& keptInFolder) {
    return vorla::machineIdentity("/etc/machine-id", keptInFolder + "/VorlaSDKMachine.id");
}

std::string VLNEXUtilities::version() {
    const std::string value = shortVersion();
    return value.empty() ? "1.0.0" : value;
}

std::string VLNEXUtilities::bundleShortVersion() {
    std::string value = shortVersion();
    std::erase(value, '.');
    return value.size() < 2 ? "00" : value.substr(0, 2);
}

std::string VLNEXUtilities::buildVersion() {
    const std::string value = Bundle::framework().infoString("CFBundleVersion");
    return value.empty() ? "10560" : value;
}

std::string VLNEXUtilities::formattedVersion() {
    return version() + "(" + buildVersion() + ")";
}

std::string VLNEXUtilities::supplyID() {
    return Bundle::framework().infoString("SupplyID");
}

std::string VLNEXUtilities::operatingSystem() {
    const nlohmann::json platforms = Bundle::framework().infoValue("CFBundleSupportedPlatforms");
    if (!platforms.is_array() || platforms.empty() || !platforms[0].is_string()) return {};
    return platforms[0].get<std::string>();
}

int64_t VLNEXUtilities::clientVersion() {
    std::istringstream parts(shortVersion());
    uint64_t packed = 0;
    for (int i = 0; i < 4; ++i) {
        std::string part;
        std::getline(parts, part, '.');
        packed = (packed << 16U) | sixteenBits(part);
    }
    return static_cast<int64_t>(packed);
}

std::string VLNEXUtilities::operatingSystemVersion() {
    std::istringstream lines(vorla::readFile("/etc/os-release").value_or(""));
    const std::string key = "VERSION_ID=";
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(key)) continue;
        std::string value = line.substr(key.size());
        std::erase_if(value, [](char c) { return c == '"' || c == '\''; });
        if (const auto numbers = vorla::threeNumbers(value)) return *numbers;
    }
    utsname kernel = {};
    ::uname(&kernel);
    return vorla::threeNumbers(kernel.release).value_or("0.0.0");
}

std::string VLNEXUtilities::operatingSystemLanguage() {
    return vorla::preferredLanguage();
}
