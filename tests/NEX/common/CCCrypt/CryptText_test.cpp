#include "NEX/common/CCCrypt/CryptText.h"

#include <gtest/gtest.h>

#include "NEX/common/CCCrypt/CryptData.h"

namespace {

using namespace std::string_view_literals;

TEST(CryptText, PublishedDigests) {
    const struct {
        std::string_view text;
        std::optional<std::string> md5;
        std::optional<std::string> sha1;
    } rows[] = {
        {"a", "0cc175b9c0f1b6a831c399e269772661", "86f7e437faa5a7fce15d1ddcb9eaeaea377667b8"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72", "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0",
         "c12252ceda8be8994d5fa0290a47231c1d16aae3"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "8215ef0796a20bcaaae116d3876c664a", "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
        {"abc\0def"sv, "900150983cd24fb0d6963f7d28e17f72",
         "a9993e364706816aba3e25717850c26c9cd0d89d"},
        {"\0"sv, "d41d8cd98f00b204e9800998ecf8427e", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
        {"", std::nullopt, "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Ozu_hexStringOfMD5(row.text), row.md5);
        EXPECT_EQ(Ozu_hexStringOfSHA1(row.text), row.sha1);
        EXPECT_EQ(Ozu_sha1(row.text).value().size(), 20U);
        EXPECT_EQ(Ozu_md5(row.text).has_value(), row.md5.has_value());
    }
}

TEST(CryptText, DesOfATextHasALimit) {
    const auto key = Ozu_dataWithHexString("0123456789abcdef").value();
    const auto cipher =
        Ozu_encryptWithDES("Now is the time for all ", key.data(), CCOperationEncrypt);
    ASSERT_TRUE(cipher);
    EXPECT_EQ(Ozu_hexString(*cipher).substr(0, 48),
              "3fa40e8a984d48156a271787ab8883f9893d51ec4b563b53");
    const std::string back(cipher->begin(), cipher->end());
    const auto plain = Ozu_encryptWithDES(back, key.data(), CCOperationDecrypt);
    ASSERT_TRUE(plain);
    EXPECT_EQ(std::string(plain->begin(), plain->end()), "Now is the time for all ");

    const auto longest = Ozu_encryptWithDES(std::string(1023, 'x'), key.data(), CCOperationEncrypt);
    ASSERT_TRUE(longest);
    EXPECT_EQ(longest->size(), 1024U);
    EXPECT_FALSE(Ozu_encryptWithDES(std::string(1024, 'x'), key.data(), CCOperationEncrypt));
    EXPECT_FALSE(Ozu_encryptWithDES(std::nullopt, key.data(), CCOperationEncrypt));
    EXPECT_FALSE(Ozu_encryptWithDES("x", nullptr, CCOperationEncrypt));
    EXPECT_FALSE(Ozu_encryptWithDES("not a cipher", key.data(), CCOperationDecrypt));
    EXPECT_EQ(Ozu_encryptWithDES("", key.data(), CCOperationEncrypt).value().size(), 8U);
}

}  // namespace
