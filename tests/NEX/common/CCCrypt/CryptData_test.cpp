#include "NEX/common/CCCrypt/CryptData.h"

#include <gtest/gtest.h>
#include <openssl/err.h>

#include "NEX/common/CCCrypt/CryptText.h"

// The ciphers themselves are the library's, and tested there: here is what our wrapping adds.
namespace {

using Bytes = std::vector<uint8_t>;

const Bytes plain(17, 0x5A);

std::string hexOrNone(const std::optional<Bytes>& bytes) {
    return bytes ? Ozu_hexString(*bytes) : "none";
}

// Sent: the statistics server decrypts what single DES produced.
TEST(CryptData, SingleDesIsTripleDesWithOneKey) {
    const auto cipher = Ozu_desWithKey(plain, "8 bytes!");
    EXPECT_EQ(Ozu_tripleDESDecryptWithKey(cipher.value(), "8 bytes!8 bytes!8 bytes!"), plain);
    const auto key = Ozu_dataWithHexString("0123456789abcdef").value();
    const auto text =
        Ozu_encryptWithDES("Now is the time for all ", key.data(), CCOperationEncrypt);
    // FIPS 81, table B1, and a block of padding.
    EXPECT_EQ(hexOrNone(text).substr(0, 48), "3fa40e8a984d48156a271787ab8883f9893d51ec4b563b53");
    EXPECT_FALSE(Ozu_encryptWithDES(std::string(1024, 'x'), key.data(), CCOperationEncrypt));
    EXPECT_FALSE(Ozu_encryptWithDES("x", nullptr, CCOperationEncrypt));
}

TEST(CryptData, KeysOfUnfitLength) {
    EXPECT_EQ(AES128EncryptWithKey(plain, "short"),
              AES128EncryptWithKey(plain, "short" + std::string(11, '\0')));
    EXPECT_EQ(AES256EncryptWithKey(plain, std::string(33, 'x')),
              AES256EncryptWithKey(plain, std::string(32, '\0')));
    for (const char* key : {"", "7 bytes", "9 bytes!!", "\u20ac 7 char"})
        EXPECT_EQ(hexOrNone(Ozu_desWithKey(plain, key)), "none") << key;
    EXPECT_TRUE(Ozu_desWithKey(plain, "\u00e9\u00ff6 long"));
    const std::string full = "\u00e9 key of 24 characters.!";
    EXPECT_EQ(Ozu_tripleDESDecryptWithKey(Ozu_tripleDesWithKey(plain, full).value(),
                                          full + " \u4e2d and more"),
              plain);
    const auto fallback = AES128CBCEncryptWithKey(plain, "key", "9081726354453627");
    for (const char* iv : {"", "seventeen chars..", "\u00e9\u00e9\u00e9\u00e9"})
        EXPECT_EQ(AES128CBCEncryptWithKey(plain, "key", iv), fallback) << iv;
    EXPECT_EQ(AES128CBCEncryptWithKey(plain, "key", "\u00e9" + std::string(15, 'x')),
              AES128CBCEncryptWithKey(plain, "key", std::string(16, '\0')));
}

TEST(CryptData, BytesThatNoEncryptionGaveAreRefused) {
    Bytes cipher = AES128EncryptWithKey(plain, "key").value();
    EXPECT_EQ(AES128DecryptWithKey(cipher, "key"), plain);
    EXPECT_FALSE(AES128DecryptWithKey(cipher, "other key"));
    cipher.pop_back();
    EXPECT_FALSE(AES128DecryptWithKey(cipher, "key"));
    EXPECT_EQ(ERR_peek_error(), 0UL) << "the host's error queue was touched";
}

TEST(CryptData, TextsAndDigests) {
    EXPECT_EQ(hexOrNone(Ozu_dataWithHexString("0A 0b-xf F")), "0a0bff");
    EXPECT_EQ(hexOrNone(Ozu_dataWithHexString("\u00e9")), "none");
    EXPECT_DEATH(Ozu_dataWithHexString("abc"), "cursor % 2 == 0");
    EXPECT_EQ(hexOrNone(Ozu_sha1(Bytes{'a', 'b', 'c'})),
              "900150983cd24fb0d6963f7d28e17f7200000000");
    EXPECT_EQ(hexOrNone(Ozu_md5(Bytes{})), "none");
    EXPECT_EQ(Ozu_hexStringOfMD5(std::string("abc\0def", 7)), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Ozu_hexStringOfSHA1("abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
    EXPECT_EQ(Ozu_hexStringOfMD5(""), std::nullopt);
}

}  // namespace
