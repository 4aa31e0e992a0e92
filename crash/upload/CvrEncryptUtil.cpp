#include "crash/upload/CvrEncryptUtil.h"

#include <algorithm>

#include "NEX/common/CCCrypt/CryptData.h"
#include "NEX/common/CCCrypt/evp.h"
#include "crash/CvrLog.h"

namespace {

constexpr size_t keyLength = 8;

std::optional<vorla::Bytes> desCbc(CCOperation direction, vorla::ByteView data,
                                   std::string_view key) {
    if (key.size() < keyLength) return std::nullopt;
    const auto* start = reinterpret_cast<const uint8_t*>(key.data());
    const vorla::ByteView single(start, keyLength);
    // Triple DES with one key three times over produces the same bytes, and is in every OpenSSL.
    vorla::Bytes triple;
    for (int i = 0; i < 3; ++i) triple.insert(triple.end(), single.begin(), single.end());
    return vorla::runCipher("DES-EDE3-CBC", direction, triple, single, data);
}

}  // namespace

std::optional<std::vector<uint8_t>> DESCvrEncryptUtil::enCryptDES(std::span<const uint8_t> data,
                                                                  std::string_view key) {
    return desCbc(CCOperationEncrypt, data, key);
}

std::optional<std::vector<uint8_t>> DESCvrEncryptUtil::deCryptDES(std::span<const uint8_t> data,
                                                                  std::string_view key) {
    return desCbc(CCOperationDecrypt, data, key);
}

std::unique_ptr<CvrEncrypt> CvrEncryptUtil::getEncrypt(int type) {
    if (type == des) return std::make_unique<DESCvrEncryptUtil>();
    CvrLogError("<ERROR> CVR: unsupported enc type");
    return nullptr;
}

std::string CvrEncryptUtil::MD5(std::string_view text) {
    const auto digest = vorla::runDigest(
        "MD5", vorla::ByteView(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
    std::string hex = digest ? Ozu_hexString(*digest) : std::string();
    std::ranges::transform(hex, hex.begin(), [](char c) {
        return c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return hex;
}
