#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// The direction of a cipher.
enum CCOperation : uint32_t {
    CCOperationEncrypt = 0,
    CCOperationDecrypt = 1,
};

namespace vorla {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

/// Runs a block cipher with PKCS#7 padding over the whole input. `cipher` is its OpenSSL name; an
/// empty `iv` goes with ECB. None when the key does not have the cipher's length, or the input to
/// decrypt was not encrypted in this way, or the module with the ciphers cannot be loaded. Any
/// thread, outside of locks; the first call takes milliseconds.
///
/// The library's state that the host may use as well is left alone: algorithms come from a context
/// of our own, and the thread's error queue is as it was before.
std::optional<Bytes> runCipher(const char* cipher, CCOperation direction, ByteView key, ByteView iv,
                               ByteView input);

/// The digest "MD5", "SHA1" or "SHA256" of any input; none for another name. Any thread.
std::optional<Bytes> runDigest(std::string_view digest, ByteView input);

/// Single DES in ECB mode (FIPS 46-3) as triple DES with the key three times over: the same bytes,
/// from an algorithm that is still in OpenSSL's default provider. None for a key of other than 8
/// bytes.
std::optional<Bytes> runDes(CCOperation direction, ByteView key, ByteView input);

}  // namespace vorla
