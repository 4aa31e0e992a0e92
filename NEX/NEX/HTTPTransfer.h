#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>

#include "NEX/NEX+PAK/RMIModelNEX/HTTPMessage.h"
#include "NEX/NEX/HTTPModule.h"

namespace vorla {

/// What protects the host from the other side.
struct HTTPLimits {
    /// For name resolution and connection together.
    std::chrono::milliseconds connect = std::chrono::seconds(60);
    /// Without a single byte in either direction. Whole seconds.
    std::chrono::seconds idle{60};
    /// For everything: stops a server that drips its answer.
    std::chrono::milliseconds total = std::chrono::minutes(5);
    /// Of a decoded body: stops an endless one and one that unpacks to gigabytes.
    size_t largestBody = size_t{1024} * 1024;
    /// Of all header lines together.
    size_t largestHeader = size_t{64} * 1024;
};

/// How far a direction has come, in bytes; a total of 0 is not known.
using HTTPProgress = std::function<void(int64_t done, int64_t total)>;

struct CurlEasyDeleter {
    const HTTPLibrary* library = nullptr;
    void operator()(CURL* handle) const { library->easy_cleanup(handle); }
};
struct CurlListDeleter {
    const HTTPLibrary* library = nullptr;
    void operator()(curl_slist* list) const { library->slist_free_all(list); }
};

/// One request and its answer on a curl handle. Redirects are not followed (a redirected POST would
/// become a GET without its body), and only http and https are spoken. Belongs to one thread from
/// `prepare` on.
class HTTPTransfer {
 public:
    HTTPTransfer(HTTPRequest request, HTTPLimits limits)
        : request_(std::move(request)), limits_(limits) {}
    HTTPTransfer(const HTTPTransfer&) = delete;
    HTTPTransfer& operator=(const HTTPTransfer&) = delete;

    /// Called on the transfer's thread while it runs. Set before `prepare`.
    HTTPProgress uploadProgress;
    HTTPProgress downloadProgress;

    /// The handle, ready to run, or null when curl refuses the request (out of memory).
    CURL* prepare(const HTTPLibrary& library);

    /// The outcome, once curl is done with the handle.
    HTTPResult finish(CURLcode code);

 private:
    static size_t onBody(char* bytes, size_t unit, size_t count, void* self);
    static size_t onHeader(char* bytes, size_t unit, size_t count, void* self);
    static int onProgress(void* self, curl_off_t downTotal, curl_off_t down, curl_off_t upTotal,
                          curl_off_t up);
    bool setHeaderFields();
    bool setLimits();

    HTTPRequest request_;
    HTTPLimits limits_;
    HTTPResult result_;
    size_t headerBytes_ = 0;
    const HTTPLibrary* library_ = nullptr;
    std::unique_ptr<curl_slist, CurlListDeleter> headerList_;
    std::unique_ptr<CURL, CurlEasyDeleter> handle_;
};

}  // namespace vorla
