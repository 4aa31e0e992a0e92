#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "NEX/NEX+PAK/RMIModelNEX/CompletionQueue.h"
#include "NEX/NEX/HTTPTransfer.h"

/// The HTTP client that all agents share: any number of requests at a time, on one thread of its
/// own which starts with the first of them. Nothing here blocks the caller. Any thread.
///
/// At the host's exit requests under way are dropped at once, without a completion. The instance
/// that is shared lives as long as the process.
class OzuHTTPSessionManager {
 public:
    using CompletionHandler = std::function<void(const vorla::HTTPResult&)>;

    static const std::shared_ptr<OzuHTTPSessionManager>& sharedInstance();

    explicit OzuHTTPSessionManager(vorla::HTTPLimits limits = {});
    /// Drops what is under way, without completions.
    ~OzuHTTPSessionManager();
    OzuHTTPSessionManager(const OzuHTTPSessionManager&) = delete;
    OzuHTTPSessionManager& operator=(const OzuHTTPSessionManager&) = delete;

    /// Sends a request. The progress callbacks, which may be empty, run on the session's thread;
    /// the completion handler is called exactly once, never in line.
    void dataTaskWithRequest(vorla::HTTPRequest request, vorla::HTTPProgress uploadProgress,
                             vorla::HTTPProgress downloadProgress,
                             CompletionHandler completionHandler,
                             vorla::CompletionQueue queue = vorla::CompletionQueue::Main);

    /// The content types that an answer should have. One of another type is delivered all the same,
    /// with an error that says so.
    static const std::set<std::string, std::less<>>& acceptableContentTypes();

    /// Loads what requests need, in a way that the host's exit leaves it alone. Takes
    /// milliseconds the first time: not for the main thread. Null, with the reason in the log, when
    /// no requests can be sent.
    static const vorla::HTTPLibrary* prepareLibraries();

 private:
    struct State;
    std::unique_ptr<State> state_;
};
