#pragma once

#include <functional>
#include <memory>

#include "NEX/NEX+PAK/RMIModelNEX/NexService.h"

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
