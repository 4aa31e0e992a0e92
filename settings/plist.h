#pragma once

#include <sys/types.h>

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

/// Reads a dictionary that `writeToPlistFile` has written: one CBOR map (RFC 8949) with text keys.
///
/// None when the file is missing, unreadable or no such dictionary; the latter two are logged. Safe
/// with any file: one above 16 MiB, or nested deeper than 64, counts as foreign. Any thread.
std::optional<nlohmann::json> readFromPlistFile(const std::string& path);

/// The dictionary in such bytes; none when they are no such dictionary.
std::optional<nlohmann::json> dictionaryFromPlist(std::string_view bytes);

/// Writes a dictionary (a JSON object) in place of whatever file stands there. A reader, or the
/// next start after a crash, sees the old file or the new one. False when it cannot be written,
/// with errno set; the old file is then untouched. `mode` is the permission of the new file. Any
/// thread.
bool writeToPlistFile(const nlohmann::json& dictionary, const std::string& path,
                      mode_t mode = 0600);
