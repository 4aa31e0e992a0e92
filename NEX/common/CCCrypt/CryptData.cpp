#include "NEX/common/CCCrypt/CryptData.h"

#include <algorithm>
#include <cstdlib>

#include "NEX/common/CCCrypt/utf8.h"
#include "platform/base/VLLog.h"

namespace {

using vorla::Bytes;
using vorla::ByteView;

constexpr size_t vectorSize = 16;
constexpr std::string_view defaultVector = "9081726354453627";

Bytes paddedText(std::string_view text, size_t size) {
    Bytes bytes(size);
    if (text.size() <= size) std::copy(text.begin(), text.end(), bytes.begin());
    return bytes;
}

std::optional<Bytes> aes256(ByteView data, CCOperation operation, std::string_view key) {
    return vorla::runCipher("AES-256-ECB", operation, paddedText(key, 32), {}, data);
}

std::optional<Bytes> aes128Cbc(ByteView data, CCOperation operation, std::string_view key,
                               std::string_view gIv) {
    const bool usable = vorla::utf16Length(gIv) == vectorSize;
    const Bytes vector = paddedText(usable ? gIv : defaultVector, vectorSize);
    return vorla::runCipher("AES-128-CBC", operation, paddedText(key, 16), vector, data);
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::optional<Bytes> AES256EncryptWithKey(ByteView data, std::string_view key) {
    return aes256(data, CCOperationEncrypt, key);
}

std::optional<Bytes> AES256DecryptWithKey(ByteView data, std::string_view key) {
    return aes256(data, CCOperationDecrypt, key);
}

std::optional<Bytes> AES128EncryptWithKey(ByteView data, std::string_view key) {
    return AES128Operation(data, CCOperationEncrypt, key);
}

std::optional<Bytes> AES128DecryptWithKey(ByteView data, std::string_view key) {
    return AES128Operation(data, CCOperationDecrypt, key);
}

std::optional<Bytes> AES128Operation(ByteView data, CCOperation operation, std::string_view key) {
    return vorla::runCipher("AES-128-ECB", operation, paddedText(key, 16), {}, data);
}

std::optional<Bytes> AES128CBCEncryptWithKey(ByteView data, std::string_view key,
                                             std::string_view gIv) {
    return aes128Cbc(data, CCOperationEncrypt, key, gIv);
}

std::optional<Bytes> AES128CBCDecryptWithKey(ByteView data, std::string_view key,
                                             std::string_view gIv) {
    return aes128Cbc(data, CCOperationDecrypt, key, gIv);
}

std::optional<Bytes> Ozu_desWithKey(ByteView data, std::string_view key) {
    const auto bytes = vorla::latin1FromUtf8(key);
    return bytes ? vorla::runDes(CCOperationEncrypt, *bytes, data) : std::nullopt;
}

std::optional<Bytes> Ozu_tripleDesWithKey(ByteView data, std::string_view key) {
    const auto bytes = vorla::latin1FromUtf8(key);
    if (!bytes) return std::nullopt;
    return vorla::runCipher("DES-EDE3-ECB", CCOperationEncrypt, *bytes, {}, data);
}

std::optional<Bytes> Ozu_tripleDESDecryptWithKey(ByteView data, std::string_view key) {
    Bytes bytes = vorla::latin1FromUtf8(key, 24).value_or(Bytes());
    bytes.resize(24);
    return vorla::runCipher("DES-EDE3-ECB", CCOperationDecrypt, bytes, {}, data);
}

std::optional<Bytes> Ozu_dataWithHexString(std::string_view text) {
    const auto isAscii = [](char c) { return static_cast<uint8_t>(c) < 0x80; };
    if (!std::all_of(text.begin(), text.end(), isAscii)) return std::nullopt;
    Bytes bytes;
    size_t cursor = 0;
    for (const char c : text) {
        const int digit = hexDigit(c);
        if (digit < 0) continue;
        if (cursor % 2 == 0) bytes.push_back(0);
        bytes.back() = static_cast<uint8_t>(bytes.back() * 16 + digit);
        ++cursor;
    }
    if (cursor % 2 == 0) return bytes;
    VLLogError("assertion failed: cursor %% 2 == 0");
    std::abort();
}

std::optional<Bytes> Ozu_md5(ByteView data) {
    return data.empty() ? std::nullopt : vorla::runDigest("MD5", data);
}

std::optional<Bytes> Ozu_sha1(ByteView data) {
    auto bytes = Ozu_md5(data);
    if (bytes) bytes->resize(20);
    return bytes;
}

std::string Ozu_hexString(ByteView data) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(data.size() * 2);
    for (const uint8_t byte : data) {
        text += digits[byte >> 4U];
        text += digits[byte & 0x0FU];
    }
    return text;
}
