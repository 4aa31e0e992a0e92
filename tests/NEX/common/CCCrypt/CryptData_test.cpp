#include "NEX/common/CCCrypt/CryptData.h"

#include <gtest/gtest.h>
#include <openssl/err.h>

#include <functional>

#include "NEX/common/CCCrypt/utf8.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Operation = std::function<std::optional<Bytes>(const Bytes&, const std::string&)>;

Bytes hex(std::string_view text) {
    return Ozu_dataWithHexString(text).value();
}

std::string hexOrNone(const std::optional<Bytes>& bytes) {
    return bytes ? Ozu_hexString(*bytes) : "none";
}

/// Bytes as the text whose Latin-1 form they are.
std::string latin1Key(std::string_view hexText) {
    const Bytes bytes = hex(hexText);
    return vorla::utf8FromLatin1(std::string(bytes.begin(), bytes.end()));
}

std::string rawKey(std::string_view hexText) {
    const Bytes bytes = hex(hexText);
    return {bytes.begin(), bytes.end()};
}

// The published vectors are whole blocks without padding, so a result begins with the vector's
// bytes and ends with one more block.
TEST(CryptData, PublishedVectors) {
    const std::string iv = rawKey("000102030405060708090a0b0c0d0e0f");
    const auto cbc = [iv](const Bytes& data, const std::string& key) {
        return AES128CBCEncryptWithKey(data, key, iv);
    };
    const auto uncbc = [iv](const Bytes& data, const std::string& key) {
        return AES128CBCDecryptWithKey(data, key, iv);
    };
    const auto undes = [](const Bytes& data, const std::string& key) {
        return Ozu_tripleDESDecryptWithKey(data, key + key + key);
    };
    const struct {
        const char* source;
        Operation encrypt, decrypt;
        std::string key;
        const char *plain, *cipher;
        size_t block;
    } rows[] = {
        {"FIPS 197 C.1", AES128EncryptWithKey, AES128DecryptWithKey,
         rawKey("000102030405060708090a0b0c0d0e0f"), "00112233445566778899aabbccddeeff",
         "69c4e0d86a7b0430d8cdb78070b4c55a", 16},
        {"FIPS 197 C.3", AES256EncryptWithKey, AES256DecryptWithKey,
         rawKey("000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f"),
         "00112233445566778899aabbccddeeff", "8ea2b7ca516745bfeafc49904b496089", 16},
        {"SP 800-38A F.2.1", cbc, uncbc, rawKey("2b7e151628aed2a6abf7158809cf4f3c"),
         "6bc1bee22e409f96e93d7e117393172aae2d8a571e03ac9c9eb76fac45af8e51",
         "7649abac8119b246cee98e9b12e9197d5086cb9b507219ee95db113a917678b2", 16},
        {"FIPS 81 B.1", Ozu_desWithKey, undes, latin1Key("0123456789abcdef"),
         "4e6f77206973207468652074696d6520666f7220616c6c20",
         "3fa40e8a984d48156a271787ab8883f9893d51ec4b563b53", 8},
        {"SP 800-67 B.1", Ozu_tripleDesWithKey, Ozu_tripleDESDecryptWithKey,
         latin1Key("0123456789abcdef23456789abcdef01456789abcdef0123"),
         "5468652071756663 6b2062726f776e20 666f78206a756d70",
         "a826fd8ce53b855fcce21c8112256fe668d5c05dd9b6b900", 8},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.source);
        const Bytes plain = hex(row.plain);
        const auto cipher = row.encrypt(plain, row.key);
        ASSERT_TRUE(cipher);
        EXPECT_EQ(cipher->size(), plain.size() + row.block);
        EXPECT_EQ(Ozu_hexString(*cipher).substr(0, plain.size() * 2), row.cipher);
        EXPECT_EQ(row.decrypt(*cipher, row.key), plain);
    }
}

TEST(CryptData, PaddingAtEveryLength) {
    const std::string iv = "1234567890123456";
    for (size_t length = 0; length <= 33; ++length) {
        const Bytes plain(length, 0x5A);
        const size_t aes = length + 16 - length % 16;
        const size_t des = length + 8 - length % 8;
        const auto ecb = AES128EncryptWithKey(plain, "key");
        const auto cbc = AES128CBCEncryptWithKey(plain, "key", iv);
        const auto single = Ozu_desWithKey(plain, "8 bytes!");
        ASSERT_TRUE(ecb && cbc && single) << length;
        EXPECT_EQ(ecb->size(), aes);
        EXPECT_EQ(cbc->size(), aes);
        EXPECT_EQ(single->size(), des);
        EXPECT_EQ(AES128DecryptWithKey(*ecb, "key"), plain);
        EXPECT_EQ(AES128CBCDecryptWithKey(*cbc, "key", iv), plain);
    }
}

TEST(CryptData, KeysOfUnfitLength) {
    const Bytes plain = hex("00112233445566778899aabbccddeeff");
    const std::string zeros16(16, '\0');
    const std::string zeros32(32, '\0');
    EXPECT_EQ(AES128EncryptWithKey(plain, "short"),
              AES128EncryptWithKey(plain, "short" + std::string(11, '\0')));
    EXPECT_EQ(AES256EncryptWithKey(plain, "short"),
              AES256EncryptWithKey(plain, "short" + std::string(27, '\0')));
    EXPECT_EQ(AES128EncryptWithKey(plain, std::string(17, 'x')),
              AES128EncryptWithKey(plain, zeros16));
    EXPECT_EQ(AES256EncryptWithKey(plain, std::string(33, 'x')),
              AES256EncryptWithKey(plain, zeros32));
    EXPECT_NE(AES128EncryptWithKey(plain, std::string(16, 'x')),
              AES128EncryptWithKey(plain, zeros16));

    for (const char* key : {"", "7 bytes", "9 bytes!!", "\u20ac 7 char", "\u4e2d"})
        EXPECT_EQ(hexOrNone(Ozu_desWithKey(plain, key)), "none") << key;
    EXPECT_TRUE(Ozu_desWithKey(plain, "\u00e9\u00ff6 long"));

    const std::string ten = "ten chars!";
    EXPECT_FALSE(Ozu_tripleDesWithKey(plain, ten));
    const auto padded = Ozu_tripleDesWithKey(plain, ten + std::string(14, '\0'));
    ASSERT_TRUE(padded);
    EXPECT_EQ(Ozu_tripleDESDecryptWithKey(*padded, ten), plain);
    const std::string full = "\u00e9 key of 24 characters.!";
    const auto whole = Ozu_tripleDesWithKey(plain, full);
    ASSERT_TRUE(whole);
    EXPECT_EQ(Ozu_tripleDESDecryptWithKey(*whole, full + " \u4e2d and more"), plain);
}

TEST(CryptData, VectorsOfUnfitLength) {
    const Bytes plain = hex("00112233445566778899aabbccddeeff00");
    const auto fallback = AES128CBCEncryptWithKey(plain, "key", "9081726354453627");
    for (const char* iv : {"", "fifteen chars..", "seventeen chars..", "\u00e9\u00e9\u00e9\u00e9"})
        EXPECT_EQ(AES128CBCEncryptWithKey(plain, "key", iv), fallback) << iv;
    // Sixteen characters, but more bytes than the cipher has place for.
    EXPECT_EQ(AES128CBCEncryptWithKey(plain, "key", "\u00e9" + std::string(15, 'x')),
              AES128CBCEncryptWithKey(plain, "key", std::string(16, '\0')));
    EXPECT_NE(AES128CBCEncryptWithKey(plain, "key", "sixteen chars..."), fallback);
}

TEST(CryptData, BytesThatNoEncryptionGaveAreRefused) {
    Bytes cipher = AES128EncryptWithKey(hex("0011"), "key").value();
    EXPECT_FALSE(AES128DecryptWithKey(cipher, "other key"));
    EXPECT_FALSE(AES128DecryptWithKey({}, "key"));
    cipher.pop_back();
    EXPECT_FALSE(AES128DecryptWithKey(cipher, "key"));
    EXPECT_FALSE(Ozu_tripleDESDecryptWithKey(hex("001122"), "key"));
    EXPECT_EQ(ERR_peek_error(), 0UL) << "the host's error queue was touched";
}

TEST(CryptData, HexadecimalText) {
    const struct {
        std::string text, bytes;
    } rows[] = {
        {"0A 0b", "0a0b"},  {"", ""},           {"xyz", ""},
        {"a-B", "ab"},      {"0g0", "00"},      {std::string("1\0f", 3), "1f"},
        {"\u00e9", "none"}, {"ff\x80", "none"}, {"deadBEEF", "deadbeef"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(hexOrNone(Ozu_dataWithHexString(row.text)), row.bytes) << row.text;
    EXPECT_DEATH(Ozu_dataWithHexString("abc"), "cursor % 2 == 0");
    EXPECT_EQ(Ozu_hexString(Bytes{0x00, 0x0F, 0xF0, 0xFF}), "000ff0ff");
}

TEST(CryptData, DigestsOfBytes) {
    const Bytes abc{'a', 'b', 'c'};
    EXPECT_EQ(hexOrNone(Ozu_md5(abc)), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(hexOrNone(Ozu_sha1(abc)), "900150983cd24fb0d6963f7d28e17f7200000000");
    EXPECT_EQ(hexOrNone(Ozu_md5(Bytes{})), "none");
    EXPECT_EQ(hexOrNone(Ozu_sha1(Bytes{})), "none");
    EXPECT_NE(Ozu_md5(Bytes{'a', 0, 'b'}), Ozu_md5(Bytes{'a'}));
}

}  // namespace
