#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>

#include <climits>
#include <memory>

#include "NEX/common/CCCrypt/CipherModule.h"

namespace {

using vorla::Bytes;
using vorla::ByteView;

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};
using Cipher = std::unique_ptr<EVP_CIPHER, Release<EVP_CIPHER_free>>;
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, Release<EVP_CIPHER_CTX_free>>;

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

bool vorlaRunCipher(const char* cipher, CCOperation direction, ByteView key, ByteView iv,
                    ByteView input, Bytes& output) {
    // Must not leave an exit handler behind that frees what threads of ours still use.
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
    const ErrorQueueKept guard;
    const Cipher algorithm(EVP_CIPHER_fetch(libraryContext(), cipher, nullptr));
    const CipherContext context(EVP_CIPHER_CTX_new());
    if (!algorithm || !context || input.size() > INT_MAX - EVP_MAX_BLOCK_LENGTH) return false;
    if (key.size() != static_cast<size_t>(EVP_CIPHER_get_key_length(algorithm.get())) ||
        iv.size() != static_cast<size_t>(EVP_CIPHER_get_iv_length(algorithm.get())))
        return false;
    if (EVP_CipherInit_ex2(context.get(), algorithm.get(), key.data(),
                           iv.empty() ? nullptr : iv.data(), direction == CCOperationEncrypt,
                           nullptr) != 1)
        return false;
    output.resize(input.size() + EVP_MAX_BLOCK_LENGTH);
    int moved = 0;
    if (!input.empty() && EVP_CipherUpdate(context.get(), output.data(), &moved, input.data(),
                                           static_cast<int>(input.size())) != 1)
        return false;
    int last = 0;
    if (EVP_CipherFinal_ex(context.get(), output.data() + moved, &last) != 1) return false;
    output.resize(static_cast<size_t>(moved + last));
    return true;
}
