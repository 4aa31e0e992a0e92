#include "NEX/NEX/HTTPTransfer.h"

#include <new>

namespace vorla {
namespace {

/// Sets one option after the other until one fails.
class Options {
 public:
    Options(const HTTPLibrary& library, CURL* handle) : library_(library), handle_(handle) {}
    template <typename T>
    Options& set(CURLoption option, T value) {
        if (done_) done_ = library_.easy_setopt(handle_, option, value) == CURLE_OK;
        return *this;
    }
    [[nodiscard]] bool done() const { return done_; }

 private:
    const HTTPLibrary& library_;
    CURL* handle_;
    bool done_ = true;
};

/// A line break in a value would start a header field of its own.
bool isOneLine(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) == std::string_view::npos;
}

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

}  // namespace

CURL* HTTPTransfer::prepare(const HTTPLibrary& library) {
    library_ = &library;
    headerList_ = {nullptr, CurlListDeleter{&library}};
    handle_ = {library.easy_init(), CurlEasyDeleter{&library}};
    if (!handle_ || !setHeaderFields() || !setLimits()) return nullptr;
    Options options(*library_, handle_.get());
    options.set(CURLOPT_URL, request_.url.c_str())
        .set(CURLOPT_POST, 1L)
        .set(CURLOPT_POSTFIELDS, reinterpret_cast<const char*>(request_.body.data()))
        .set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request_.body.size()))
        .set(CURLOPT_CUSTOMREQUEST, request_.method.c_str())
        .set(CURLOPT_PROTOCOLS_STR, "http,https")
        .set(CURLOPT_FOLLOWLOCATION, 0L)
        .set(CURLOPT_WRITEFUNCTION, &HTTPTransfer::onBody)
        .set(CURLOPT_WRITEDATA, this)
        .set(CURLOPT_HEADERFUNCTION, &HTTPTransfer::onHeader)
        .set(CURLOPT_HEADERDATA, this);
    if (uploadProgress || downloadProgress)
        options.set(CURLOPT_NOPROGRESS, 0L)
            .set(CURLOPT_XFERINFOFUNCTION, &HTTPTransfer::onProgress)
            .set(CURLOPT_XFERINFODATA, this);
    return options.done() ? handle_.get() : nullptr;
}

bool HTTPTransfer::setHeaderFields() {
    std::vector<std::string> lines;
    for (const auto& [name, value] : request_.headerFields)
        if (isOneLine(name) && isOneLine(value)) lines.push_back(name + ": " + value);
    // Without this, curl asks for permission before it sends a large body and waits for the answer.
    lines.emplace_back("Expect:");
    for (const std::string& line : lines) {
        curl_slist* longer = library_->slist_append(headerList_.get(), line.c_str());
        if (!longer) return false;
        (void)headerList_.release();
        headerList_.reset(longer);
    }
    Options options(*library_, handle_.get());
    options.set(CURLOPT_HTTPHEADER, headerList_.get());
    const std::string encodings = request_.valueForHTTPHeaderField("Accept-Encoding");
    if (!encodings.empty()) options.set(CURLOPT_ACCEPT_ENCODING, encodings.c_str());
    return options.done();
}

bool HTTPTransfer::setLimits() {
    Options options(*library_, handle_.get());
    options.set(CURLOPT_NOSIGNAL, 1L)
        .set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits_.connect.count()))
        .set(CURLOPT_TIMEOUT_MS, static_cast<long>(limits_.total.count()))
        .set(CURLOPT_LOW_SPEED_LIMIT, 1L)
        .set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits_.idle.count()))
        // A name resolution that hangs is left to its thread instead of being waited for.
        .set(CURLOPT_QUICK_EXIT, 1L)
        .set(CURLOPT_FORBID_REUSE, 1L);
    return options.done();
}

size_t HTTPTransfer::onBody(char* bytes, size_t unit, size_t count, void* self) {
    auto* transfer = static_cast<HTTPTransfer*>(self);
    const size_t size = unit * count;
    try {
        auto& body = transfer->result_.body;
        if (!body) body.emplace();
        if (size > transfer->limits_.largestBody - body->size()) return 0;
        body->insert(body->end(), bytes, bytes + size);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return size;
}

size_t HTTPTransfer::onHeader(char* bytes, size_t unit, size_t count, void* self) {
    auto* transfer = static_cast<HTTPTransfer*>(self);
    const size_t size = unit * count;
    transfer->headerBytes_ += size;
    if (transfer->headerBytes_ > transfer->limits_.largestHeader) return 0;
    try {
        auto& fields = transfer->result_.response.allHeaderFields;
        const std::string_view line(bytes, size);
        // An interim answer comes before the real one, with a status line of its own.
        if (line.starts_with("HTTP/")) fields.clear();
        const size_t colon = line.find(':');
        if (colon != std::string_view::npos)
            fields.emplace_back(trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1)));
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return size;
}

int HTTPTransfer::onProgress(void* self, curl_off_t downTotal, curl_off_t down, curl_off_t upTotal,
                             curl_off_t up) {
    auto* transfer = static_cast<HTTPTransfer*>(self);
    if (transfer->uploadProgress) transfer->uploadProgress(up, upTotal);
    if (transfer->downloadProgress) transfer->downloadProgress(down, downTotal);
    return 0;
}

HTTPResult HTTPTransfer::finish(CURLcode code) {
    library_->easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &result_.response.statusCode);
    if (code == CURLE_OK) {
        if (!result_.body) result_.body.emplace();
    } else {
        result_.body.reset();
        result_.error = library_->easy_strerror(code);
    }
    return std::move(result_);
}

}  // namespace vorla
