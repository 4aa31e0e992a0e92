#pragma once

#include <memory>

#include "NEX/NEX+PAK/RMIModelNEX/NexAgent.h"

/// The base of the typed services: calls one servant through its agent.
class NexService {
 public:
    /// A new service without an agent: only subclasses know theirs, here it ends the process.
    static std::shared_ptr<NexService> service();

    explicit NexService(std::shared_ptr<NexAgent> initWithAgent);
    virtual ~NexService() = default;
    NexService(const NexService&) = delete;
    NexService& operator=(const NexService&) = delete;

    [[nodiscard]] const std::shared_ptr<NexAgent>& agent() const { return agent_; }

 private:
    std::shared_ptr<NexAgent> agent_;
};
