#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Encryption of a body. Any thread.
class CvrEncrypt {
 public:
    virtual ~CvrEncrypt() = default;

    /// None when the key is too short. Decryption returns none for data that no encryption with
    /// that key has produced.
    virtual std::optional<std::vector<uint8_t>> encrypt(std::span<const uint8_t> data,
                                                        std::string_view key) = 0;
    virtual std::optional<std::vector<uint8_t>> decrypt(std::span<const uint8_t> data,
                                                        std::string_view key) = 0;
};

/// DES (FIPS 46-3) in CBC mode with PKCS#7 padding. Of the key the first 8 bytes count; they are
/// the initialisation vector as well.
class DESCvrEncryptUtil final : public CvrEncrypt {
 public:
    std::optional<std::vector<uint8_t>> encrypt(std::span<const uint8_t> data,
                                                std::string_view key) override {
        return enCryptDES(data, key);
    }
    std::optional<std::vector<uint8_t>> decrypt(std::span<const uint8_t> data,
                                                std::string_view key) override {
        return deCryptDES(data, key);
    }
    static std::optional<std::vector<uint8_t>> enCryptDES(std::span<const uint8_t> data,
                                                          std::string_view key);
    static std::optional<std::vector<uint8_t>> deCryptDES(std::span<const uint8_t> data,
                                                          std::string_view key);
};

class CvrEncryptUtil {
 public:
    static constexpr int des = 1;
    /// Null for any number but 1.
    static std::unique_ptr<CvrEncrypt> getEncrypt(int type);
    /// 32 capital hexadecimal digits.
    static std::string MD5(std::string_view text);
};
