#include "NEX/common/CCCrypt/evp.h"

#include <md5.h>
#include <sha1.h>
#include <sha2.h>

#include "NEX/common/CCCrypt/CipherModule.h"
#include "platform/base/Module.h"

namespace vorla {
namespace {

template <typename Context, size_t size>
Bytes digested(void (*init)(Context*), void (*update)(Context*, const uint8_t*, size_t),
               void (*finish)(uint8_t*, Context*), ByteView input) {
    Context context;
    init(&context);
    update(&context, input.data(), input.size());
    Bytes digest(size);
    finish(digest.data(), &context);
    return digest;
}

}  // namespace

std::optional<Bytes> runCipher(const char* cipher, CCOperation direction, ByteView key, ByteView iv,
                               ByteView input) {
    auto* run = moduleFunction<RunCipher>("ciphers", "vorlaRunCipher");
    Bytes output;
    if (!run || !run(cipher, direction, key, iv, input, output)) return std::nullopt;
    return output;
}

std::optional<Bytes> runDigest(std::string_view digest, ByteView input) {
    if (digest == "MD5")
        return digested<MD5_CTX, MD5_DIGEST_LENGTH>(MD5Init, MD5Update, MD5Final, input);
    if (digest == "SHA1")
        return digested<SHA1_CTX, SHA1_DIGEST_LENGTH>(SHA1Init, SHA1Update, SHA1Final, input);
    if (digest == "SHA256")
        return digested<SHA2_CTX, SHA256_DIGEST_LENGTH>(SHA256Init, SHA256Update, SHA256Final,
                                                        input);
    return std::nullopt;
}

std::optional<Bytes> runDes(CCOperation direction, ByteView key, ByteView input) {
    if (key.size() != 8) return std::nullopt;
    Bytes tripled;
    for (int i = 0; i < 3; ++i) tripled.insert(tripled.end(), key.begin(), key.end());
    return runCipher("DES-EDE3-ECB", direction, tripled, {}, input);
}

}  // namespace vorla
