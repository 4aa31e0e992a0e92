#include "NEX/NEX/OzuHTTPSessionManager.h"

#include <map>
#include <mutex>
#include <system_error>
#include <utility>
#include <vector>

#include "NEX/NEX/ExitGate.h"
#include "platform/base/DispatchQueue.h"
#include "platform/base/raii.h"

namespace {

using vorla::CompletionQueue;
using vorla::ExitGate;
using vorla::HTTPResult;
using vorla::HTTPTransfer;

struct CurlMultiDeleter {
    const vorla::HTTPLibrary* library = nullptr;
    void operator()(CURLM* multi) const { library->multi_cleanup(multi); }
};

/// A request and the handler of its end.
struct Task {
    std::unique_ptr<HTTPTransfer> transfer;
    OzuHTTPSessionManager::CompletionHandler completion;
    CompletionQueue queue = CompletionQueue::Main;

    void complete(HTTPResult result) {
        if (!completion) return;
        vorla::completeOn(queue, [completion = std::move(completion), result = std::move(result)] {
            completion(result);
        });
    }
};

HTTPResult failure(std::string error) {
    HTTPResult result;
    result.error = std::move(error);
    return result;
}

/// Says so when the answer has a content type that nobody asked for.
void checkContentType(HTTPResult& result) {
    for (const auto& [name, value] : result.response.allHeaderFields) {
        if (vorla::asciiLowercase(name) != "content-type" || !result.error.empty()) continue;
        const std::string type = vorla::asciiLowercase(value.substr(0, value.find_first_of("; ")));
        if (OzuHTTPSessionManager::acceptableContentTypes().count(type) == 0)
            result.error = "unacceptable content-type: " + type;
    }
}

}  // namespace

/// The session's thread runs `pump` while there are requests and sleeps in the queue otherwise.
struct OzuHTTPSessionManager::State {
    explicit State(vorla::HTTPLimits limits) : limits(limits) {}

    const vorla::HTTPLimits limits;
    std::mutex mutex;
    std::vector<Task> pending;
    /// Set before `multi`, and for good.
    const vorla::HTTPLibrary* library = nullptr;
    std::unique_ptr<CURLM, CurlMultiDeleter> multi;
    bool pumping = false;
    bool stopping = false;
    int waker = 0;
    /// By the handle that curl names when it is done. Session thread only.
    std::map<CURL*, Task> running;
    vorla::DispatchQueue queue{"vorla-http"};

    void add(Task task);
    void pump();
    bool beginPending(std::vector<std::pair<Task, HTTPResult>>& ended);
    void perform(std::vector<std::pair<Task, HTTPResult>>& ended);
    bool mayRest();
    void wake() const {
        if (multi) library->multi_wakeup(multi.get());
    }
};

void OzuHTTPSessionManager::State::add(Task task) {
    {
        const std::lock_guard lock(mutex);
        pending.push_back(std::move(task));
        wake();
        if (std::exchange(pumping, true)) return;
    }
    try {
        queue.async([this] { pump(); });
        return;
    } catch (const std::system_error&) {
        // No thread to be had: the requests fail like those that find no network.
    }
    std::vector<Task> refused;
    {
        const std::lock_guard lock(mutex);
        refused.swap(pending);
        pumping = false;
    }
    for (Task& one : refused) one.complete(failure("no thread for the request"));
}

bool OzuHTTPSessionManager::State::beginPending(std::vector<std::pair<Task, HTTPResult>>& ended) {
    std::vector<Task> begun;
    const vorla::HTTPLibrary* loaded = prepareLibraries();
    {
        const std::lock_guard lock(mutex);
        if (stopping) return false;
        if (loaded && !multi) {
            library = loaded;
            multi = {library->multi_init(), CurlMultiDeleter{library}};
            waker = ExitGate::shared().addWaker([this] { wake(); });
        }
        begun.swap(pending);
    }
    for (Task& task : begun) {
        CURL* handle = multi ? task.transfer->prepare(*library) : nullptr;
        if (handle && library->multi_add_handle(multi.get(), handle) == CURLM_OK)
            running.emplace(handle, std::move(task));
        else
            ended.emplace_back(std::move(task), failure("the request cannot be sent"));
    }
    return true;
}

void OzuHTTPSessionManager::State::perform(std::vector<std::pair<Task, HTTPResult>>& ended) {
    int active = 0;
    library->multi_perform(multi.get(), &active);
    int left = 0;
    while (const CURLMsg* message = library->multi_info_read(multi.get(), &left)) {
        if (message->msg != CURLMSG_DONE) continue;
        const auto found = running.find(message->easy_handle);
        const CURLcode code = message->data.result;
        library->multi_remove_handle(multi.get(), found->first);
        HTTPResult result = found->second.transfer->finish(code);
        checkContentType(result);
        found->second.transfer.reset();
        ended.emplace_back(std::move(found->second), std::move(result));
        running.erase(found);
    }
}

bool OzuHTTPSessionManager::State::mayRest() {
    const std::lock_guard lock(mutex);
    if (!running.empty() || !pending.empty()) return false;
    pumping = false;
    return true;
}

void OzuHTTPSessionManager::State::pump() {
    for (bool resting = false; !resting;) {
        std::vector<std::pair<Task, HTTPResult>> ended;
        {
            const ExitGate::Stay stay;
            if (!beginPending(ended)) return;
            if (multi) perform(ended);
            for (auto& [task, result] : ended) task.complete(std::move(result));
            if (ended.empty()) library->multi_poll(multi.get(), nullptr, 0, 1000, nullptr);
        }
        resting = mayRest();
    }
}

OzuHTTPSessionManager::OzuHTTPSessionManager(vorla::HTTPLimits limits)
    : state_(std::make_unique<State>(limits)) {}

OzuHTTPSessionManager::~OzuHTTPSessionManager() {
    int waker = 0;
    {
        const std::lock_guard lock(state_->mutex);
        state_->stopping = true;
        state_->wake();
        waker = state_->waker;
    }
    ExitGate::shared().removeWaker(waker);
}

const std::shared_ptr<OzuHTTPSessionManager>& OzuHTTPSessionManager::sharedInstance() {
    static vorla::NoDestructor<std::shared_ptr<OzuHTTPSessionManager>> instance(
        std::make_shared<OzuHTTPSessionManager>());
    return *instance;
}

const vorla::HTTPLibrary* OzuHTTPSessionManager::prepareLibraries() {
    ExitGate::shared().install();
    const ExitGate::Stay stay;
    const vorla::HTTPLibrary* library = vorla::httpLibrary();
    static std::once_flag once;
    if (library) std::call_once(once, [library] { library->global_init(CURL_GLOBAL_ALL); });
    return library;
}

void OzuHTTPSessionManager::dataTaskWithRequest(vorla::HTTPRequest request,
                                                vorla::HTTPProgress uploadProgress,
                                                vorla::HTTPProgress downloadProgress,
                                                CompletionHandler completionHandler,
                                                CompletionQueue queue) {
    Task task;
    task.transfer = std::make_unique<HTTPTransfer>(std::move(request), state_->limits);
    task.transfer->uploadProgress = std::move(uploadProgress);
    task.transfer->downloadProgress = std::move(downloadProgress);
    task.completion = std::move(completionHandler);
    task.queue = queue;
    state_->add(std::move(task));
}

const std::set<std::string, std::less<>>& OzuHTTPSessionManager::acceptableContentTypes() {
    static vorla::NoDestructor<std::set<std::string, std::less<>>> types(
        std::initializer_list<std::string>{
            "*/*", "text/json", "application/json", "text/html", "text/javascript",
            "application/xml", "text/xml", "application/x-plist", "image/tiff", "image/jpeg",
            "image/gif", "image/png", "image/ico", "image/x-icon", "image/bmp", "image/x-bmp",
            "image/x-xbitmap", "image/x-win-bitmap", "application/multipart-formdata"});
    return *types;
}
