#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "NEX/common/CCCrypt/evp.h"

/// Operations on UTF-8 texts. All are pure functions, safe on any thread. Digests take the text's
/// bytes up to the first zero byte.

/// MD5 (RFC 1321), 16 bytes. None for an empty text.
std::optional<std::vector<uint8_t>> Ozu_md5(std::string_view text);

/// SHA-1 (FIPS 180-4), 20 bytes.
std::optional<std::vector<uint8_t>> Ozu_sha1(std::string_view text);

/// The digests as lower-case hexadecimal text.
std::optional<std::string> Ozu_hexStringOfMD5(std::string_view text);
std::optional<std::string> Ozu_hexStringOfSHA1(std::string_view text);

/// The text's bytes through DES (FIPS 46-3) in ECB mode with PKCS#7 padding. `encryptWithDES` is a
/// key of 8 bytes. None without key or text, for a text of 1024 bytes or more, and for bytes to
/// decrypt that no encryption with that key has given.
std::optional<std::vector<uint8_t>> Ozu_encryptWithDES(std::optional<std::string_view> text,
                                                       const uint8_t* encryptWithDES,
                                                       CCOperation operation);
