#pragma once

#include <cstdint>
#include <optional>
#include <span>
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
/// decrypt was not encrypted in this way. Any thread.
///
/// The library's state that the host may use as well is left alone: algorithms come from a context
/// of our own, and the thread's error queue is as it was before.
std::optional<Bytes> runCipher(const char* cipher, CCOperation direction, ByteView key, ByteView iv,
                               ByteView input);

/// The digest with that OpenSSL name, of any input. Any thread.
std::optional<Bytes> runDigest(const char* digest, ByteView input);

/// Single DES in ECB mode (FIPS 46-3) as triple DES with the key three times over: the same bytes,
/// from an algorithm that is still in OpenSSL's default provider. None for a key of other than 8
/// bytes.
std::optional<Bytes> runDes(CCOperation direction, ByteView key, ByteView input);

}  // namespace vorla
