#pragma once

#include <string>
#include <vector>

#include "NEX/NEX+PAK/RMIModelNEX/CompletionQueue.h"
#include "NEX/NEX+PAK/SerializationPAK/PakFormat.h"

class NexEncryptKey;

/// One call under way, across its attempts. Handed from thread to thread, used by one at a time.
struct NEXHTTPRequestInfo {
    NEXHTTPRequestInfo() { serverURLs.reserve(3); }

    std::string funcName;
    /// The body, the same for each attempt.
    PakData zenPacketData;
    /// The addresses still to be tried; the first one is the current one.
    std::vector<std::string> serverURLs;
    /// Handed on to the reader of the reply. No such key exists.
    const NexEncryptKey* encryptKey = nullptr;
    /// Where the completion handler runs.
    vorla::CompletionQueue completionQueue = vorla::CompletionQueue::Main;
};
