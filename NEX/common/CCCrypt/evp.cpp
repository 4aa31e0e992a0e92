#include "NEX/common/CCCrypt/evp.h"

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <climits>
#include <memory>

namespace vorla {
namespace {

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};
using Cipher = std::unique_ptr<EVP_CIPHER, Release<EVP_CIPHER_free>>;
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, Release<EVP_CIPHER_CTX_free>>;
using Digest = std::unique_ptr<EVP_MD, Release<EVP_MD_free>>;

/// Never freed: threads may encrypt while the host exits.
OSSL_LIB_CTX* libraryContext() {
    static OSSL_LIB_CTX* const context = OSSL_LIB_CTX_new();
    return context;
}

class ErrorQueueKept {
 public:
    ErrorQueueKept() { ERR_set_mark(); }
    ~ErrorQueueKept() { ERR_pop_to_mark(); }
    ErrorQueueKept(const ErrorQueueKept&) = delete;
    ErrorQueueKept& operator=(const ErrorQueueKept&) = delete;
};

}  // namespace

std::optional<Bytes> runCipher(const char* cipher, CCOperation direction, ByteView key, ByteView iv,
                               ByteView input) {
    const ErrorQueueKept guard;
    const Cipher algorithm(EVP_CIPHER_fetch(libraryContext(), cipher, nullptr));
    const CipherContext context(EVP_CIPHER_CTX_new());
    if (!algorithm || !context || input.size() > INT_MAX - EVP_MAX_BLOCK_LENGTH)
        return std::nullopt;
    if (key.size() != static_cast<size_t>(EVP_CIPHER_get_key_length(algorithm.get())) ||
        iv.size() != static_cast<size_t>(EVP_CIPHER_get_iv_length(algorithm.get())))
        return std::nullopt;
    if (EVP_CipherInit_ex2(context.get(), algorithm.get(), key.data(),
                           iv.empty() ? nullptr : iv.data(), direction == CCOperationEncrypt,
                           nullptr) != 1)
        return std::nullopt;
    Bytes output(input.size() + EVP_MAX_BLOCK_LENGTH);
    int moved = 0;
    if (!input.empty() && EVP_CipherUpdate(context.get(), output.data(), &moved, input.data(),
                                           static_cast<int>(input.size())) != 1)
        return std::nullopt;
    int last = 0;
    if (EVP_CipherFinal_ex(context.get(), output.data() + moved, &last) != 1) return std::nullopt;
    output.resize(static_cast<size_t>(moved + last));
    return output;
}

std::optional<Bytes> runDigest(const char* digest, ByteView input) {
    const ErrorQueueKept guard;
    const Digest algorithm(EVP_MD_fetch(libraryContext(), digest, nullptr));
    if (!algorithm) return std::nullopt;
    Bytes output(static_cast<size_t>(EVP_MD_get_size(algorithm.get())));
    unsigned size = 0;
    if (EVP_Digest(input.data(), input.size(), output.data(), &size, algorithm.get(), nullptr) != 1)
        return std::nullopt;
    return output;
}

std::optional<Bytes> runDes(CCOperation direction, ByteView key, ByteView input) {
    if (key.size() != 8) return std::nullopt;
    Bytes tripled;
    for (int i = 0; i < 3; ++i) tripled.insert(tripled.end(), key.begin(), key.end());
    return runCipher("DES-EDE3-ECB", direction, tripled, {}, input);
}

}  // namespace vorla
