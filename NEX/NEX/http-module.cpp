#include "NEX/NEX/HTTPModule.h"

#include <openssl/crypto.h>

const vorla::HTTPLibrary* vorlaHTTPLibrary() {
    static constexpr vorla::HTTPLibrary library = {
        .global_init = curl_global_init,
        .easy_init = curl_easy_init,
        .easy_setopt = curl_easy_setopt,
        .easy_getinfo = curl_easy_getinfo,
        .easy_strerror = curl_easy_strerror,
        .easy_cleanup = curl_easy_cleanup,
        .slist_append = curl_slist_append,
        .slist_free_all = curl_slist_free_all,
        .multi_init = curl_multi_init,
        .multi_add_handle = curl_multi_add_handle,
        .multi_remove_handle = curl_multi_remove_handle,
        .multi_perform = curl_multi_perform,
        .multi_poll = curl_multi_poll,
        .multi_wakeup = curl_multi_wakeup,
        .multi_info_read = curl_multi_info_read,
        .multi_cleanup = curl_multi_cleanup,
    };
    // The library below it must not leave an exit handler behind that frees what threads still use.
    // If the host has used it already, its handler runs after ours.
    OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
    return &library;
}
