#pragma once

#include <curl/curl.h>

namespace vorla {

/// What the module "http" offers: the HTTP library, which brings thirty others with it and is
/// needed once in a process's life at most.
struct HTTPLibrary {
    decltype(&curl_global_init) global_init;
    decltype(&curl_easy_init) easy_init;
    decltype(&curl_easy_setopt) easy_setopt;
    decltype(&curl_easy_getinfo) easy_getinfo;
    decltype(&curl_easy_strerror) easy_strerror;
    decltype(&curl_easy_cleanup) easy_cleanup;
    decltype(&curl_slist_append) slist_append;
    decltype(&curl_slist_free_all) slist_free_all;
    decltype(&curl_multi_init) multi_init;
    decltype(&curl_multi_add_handle) multi_add_handle;
    decltype(&curl_multi_remove_handle) multi_remove_handle;
    decltype(&curl_multi_perform) multi_perform;
    decltype(&curl_multi_poll) multi_poll;
    decltype(&curl_multi_wakeup) multi_wakeup;
    decltype(&curl_multi_info_read) multi_info_read;
    decltype(&curl_multi_cleanup) multi_cleanup;
};

using GetHTTPLibrary = const HTTPLibrary*();

/// The library, loaded at the first call; null, with the reason in the log, where that fails. What
/// was given once is given always. Any thread, outside of locks.
const HTTPLibrary* httpLibrary();

}  // namespace vorla

extern "C" [[gnu::visibility("default")]] vorla::GetHTTPLibrary vorlaHTTPLibrary;
