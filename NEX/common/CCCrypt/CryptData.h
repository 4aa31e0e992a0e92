#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "NEX/common/CCCrypt/evp.h"

/// Operations on byte strings. All are pure functions, safe on any thread; texts are UTF-8.
///
/// Ciphers pad as PKCS#7 defines (an input of whole blocks grows by one), and return none when the
/// key has a wrong length or the input to decrypt was not encrypted with that key.

/// AES (FIPS 197) in ECB mode. The key's bytes are filled up with zeros to 32 or 16; of a key that
/// is longer nothing is used, it counts as all zeros.
std::optional<std::vector<uint8_t>> AES256EncryptWithKey(std::span<const uint8_t> data,
                                                         std::string_view key);
std::optional<std::vector<uint8_t>> AES256DecryptWithKey(std::span<const uint8_t> data,
                                                         std::string_view key);
std::optional<std::vector<uint8_t>> AES128EncryptWithKey(std::span<const uint8_t> data,
                                                         std::string_view key);
std::optional<std::vector<uint8_t>> AES128DecryptWithKey(std::span<const uint8_t> data,
                                                         std::string_view key);
std::optional<std::vector<uint8_t>> AES128Operation(std::span<const uint8_t> data,
                                                    CCOperation operation, std::string_view key);

/// AES in CBC mode, the key as above. An initialisation vector whose length is not 16 characters is
/// replaced by a fixed one; one of 16 characters that are more than 16 bytes counts as all zeros.
std::optional<std::vector<uint8_t>> AES128CBCEncryptWithKey(std::span<const uint8_t> data,
                                                            std::string_view key,
                                                            std::string_view gIv);
std::optional<std::vector<uint8_t>> AES128CBCDecryptWithKey(std::span<const uint8_t> data,
                                                            std::string_view key,
                                                            std::string_view gIv);

/// DES (FIPS 46-3) in ECB mode. The key is taken in Latin-1 and must then have 8 bytes.
std::optional<std::vector<uint8_t>> Ozu_desWithKey(std::span<const uint8_t> data,
                                                   std::string_view key);

/// Triple DES in ECB mode. The key is taken in Latin-1 and must then have 24 bytes.
std::optional<std::vector<uint8_t>> Ozu_tripleDesWithKey(std::span<const uint8_t> data,
                                                         std::string_view key);
/// Unlike the encryption this takes any key: its first 24 characters, filled up with zeros. A key
/// that Latin-1 cannot express counts as all zeros.
std::optional<std::vector<uint8_t>> Ozu_tripleDESDecryptWithKey(std::span<const uint8_t> data,
                                                                std::string_view key);

/// The bytes of a hexadecimal text. Characters that are no hexadecimal digits are skipped. None
/// when the text is not ASCII; an odd number of digits is the caller's fault and ends the process.
std::optional<std::vector<uint8_t>> Ozu_dataWithHexString(std::string_view text);

/// MD5 (RFC 1321), 16 bytes. None for an empty input.
std::optional<std::vector<uint8_t>> Ozu_md5(std::span<const uint8_t> data);

/// In spite of its name: the 16 bytes of MD5 and four zero bytes. None for an empty input.
std::optional<std::vector<uint8_t>> Ozu_sha1(std::span<const uint8_t> data);

/// Two lower-case digits a byte, the high one first.
std::string Ozu_hexString(std::span<const uint8_t> data);
