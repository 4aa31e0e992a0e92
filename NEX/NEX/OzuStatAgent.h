#pragma once

#include <functional>
#include <memory>
#include <string>

#include "NEX/NEX+PAK/RMIModelNEX/NexAgent.h"
#include "NEX/NEX/OzuNexAgent.h"
#include "NEX/NEX/VLSTStat.h"

/// Sends statistics to the servant "zbpcstat", encrypted, at the address that the information
/// dictionary holds as "StatisticsURL". Its callbacks run on the session's thread: the
/// upload goes on while the host's main loop stands still.
class OzuStatAgent : public OzuNexAgent {
 public:
    static std::shared_ptr<OzuStatAgent> agent() { return std::make_shared<OzuStatAgent>(); }
    /// The address; empty when there is none, and nothing is to be sent.
    static std::string endpoint();

    OzuStatAgent();

    [[nodiscard]] std::vector<std::string> serverURLs() const override;
    [[nodiscard]] vorla::CompletionQueue completionQueue() const override {
        return vorla::CompletionQueue::Session;
    }

    /// Sends the record. The callback gets true when the server's return code is 0. No reply, one
    /// that is no packet and one without a return code count as 0 too: the counters are then given
    /// up rather than sent to a broken server for ever. One whose return code cannot be read counts
    /// as refused.
    void stat(VLSTStat& record, std::function<void(bool)> withCompleteHandle);
};

/// Uploads the statistics, one upload at a time, on a queue of its own that waits for each to end.
class OzuStatService : public NexService {
 public:
    OzuStatService();

    /// Queues an upload of the counters as they will stand when its turn comes. One of the two
    /// blocks is called at its end, on a background thread. Throws std::system_error when the
    /// queue's thread cannot be started.
    void statWithCompleteBlock(std::function<void()> completeBlock,
                               std::function<void()> failedBlock) const;
};
