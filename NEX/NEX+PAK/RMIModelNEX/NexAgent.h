#pragma once

#include <any>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "NEX/NEX+PAK/RMIModelNEX/HTTPMessage.h"
#include "NEX/NEX+PAK/SerializationPAK/ZenPacket.h"

class NexEncryptKey;

/// Stands for one remote object (the servant): knows where its servers are, and how a packet
/// becomes a request and a reply becomes a packet. The base leaves open who we are and which the
/// servers are; asking it ends the process.
///
/// Agents are held by shared pointers; what is under way holds its agent weakly.
class NexAgent : public std::enable_shared_from_this<NexAgent> {
 public:
    /// Makes the cache of agents. Called by the first use of it; calling it again does nothing.
    static void initialize();
    /// The agent that the process keeps for a servant, made at the first call. Any thread.
    static std::shared_ptr<NexAgent> cachedInstanceWithServant(const std::string& servant);
    /// A new agent without a servant: only subclasses know theirs, here it ends the process.
    static std::shared_ptr<NexAgent> agent();

    explicit NexAgent(std::optional<std::string> initWithServant);
    virtual ~NexAgent() = default;
    NexAgent(const NexAgent&) = delete;
    NexAgent& operator=(const NexAgent&) = delete;

    [[nodiscard]] const std::optional<std::string>& servantName() const { return servantName_; }
    void setServantName(std::optional<std::string> name) { servantName_ = std::move(name); }

    [[nodiscard]] virtual std::optional<std::string> zGuid() const;
    [[nodiscard]] virtual std::vector<std::string> serverURLs() const;
    [[nodiscard]] virtual unsigned retryTimesForEachServer() const { return 1; }

    /// Each address as often as it may be tried, one after the other.
    [[nodiscard]] std::vector<std::string> generateRequestURLsSequence(
        const std::vector<std::string>& urls) const;

    /// Makes the packet the request's body.
    virtual void setupPostDataAndExtraHeadFields(vorla::HTTPRequest& request, ZenPacket& packet,
                                                 const std::any& userInfo) const;

    /// The packet in a reply; null for an empty body and for one that holds no whole packet, which
    /// is logged. Header fields and key are for subclasses.
    [[nodiscard]] virtual std::shared_ptr<ZenPacket> handleResponseData(
        const PakData& data, const vorla::HTTPHeaderFields& headerFields,
        const NexEncryptKey* encryptKey) const;

 private:
    std::optional<std::string> servantName_;
};

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
