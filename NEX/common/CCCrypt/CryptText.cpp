#include "NEX/common/CCCrypt/CryptText.h"

#include "NEX/common/CCCrypt/CryptData.h"

namespace {

using vorla::Bytes;
using vorla::ByteView;

constexpr size_t desTextLimit = 1024;

ByteView bytesOf(std::string_view text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

ByteView bytesUpToZero(std::string_view text) {
    return bytesOf(text.substr(0, text.find('\0')));
}

std::optional<std::string> hexOf(const std::optional<Bytes>& bytes) {
    return bytes ? std::optional(Ozu_hexString(*bytes)) : std::nullopt;
}

}  // namespace

std::optional<Bytes> Ozu_md5(std::string_view text) {
    return text.empty() ? std::nullopt : vorla::runDigest("MD5", bytesUpToZero(text));
}

std::optional<Bytes> Ozu_sha1(std::string_view text) {
    return vorla::runDigest("SHA1", bytesUpToZero(text));
}

std::optional<std::string> Ozu_hexStringOfMD5(std::string_view text) {
    return hexOf(Ozu_md5(text));
}

std::optional<std::string> Ozu_hexStringOfSHA1(std::string_view text) {
    return hexOf(Ozu_sha1(text));
}

std::optional<Bytes> Ozu_encryptWithDES(std::optional<std::string_view> text,
                                        const uint8_t* encryptWithDES, CCOperation operation) {
    if (!text || !encryptWithDES || text->size() >= desTextLimit) return std::nullopt;
    return vorla::runDes(operation, ByteView(encryptWithDES, 8), bytesOf(*text));
}
