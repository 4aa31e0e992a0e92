#include "NEX/NEX+PAK/RMIModelNEX/NexAgent.h"

#include <exception>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "platform/base/VLLog.h"
#include "platform/base/raii.h"

namespace {

struct AgentCache {
    AgentCache() { agents.reserve(24); }
    std::mutex mutex;
    std::unordered_map<std::string, std::shared_ptr<NexAgent>> agents;
};

AgentCache& agentCache() {
    static vorla::NoDestructor<AgentCache> instance;
    return *instance;
}

/// The length that the first four bytes announce; 0 when there are fewer.
uint32_t announcedLength(const PakData& data) {
    if (data.size() < 4) return 0;
    uint32_t length = 0;
    for (size_t i = 0; i < 4; ++i) length = length << 8U | data[i];
    return length;
}

}  // namespace

void NexAgent::initialize() {
    agentCache();
}

std::shared_ptr<NexAgent> NexAgent::cachedInstanceWithServant(const std::string& servant) {
    AgentCache& cache = agentCache();
    const std::lock_guard lock(cache.mutex);
    std::shared_ptr<NexAgent>& cached = cache.agents[servant];
    if (!cached) cached = std::make_shared<NexAgent>(servant);
    return cached;
}

std::shared_ptr<NexAgent> NexAgent::agent() {
    vorla::pakFail("an agent needs a servant");
}

NexAgent::NexAgent(std::optional<std::string> initWithServant)
    : servantName_(std::move(initWithServant)) {}

std::optional<std::string> NexAgent::zGuid() const {
    vorla::pakFail("zGuid must be overridden");
}

std::vector<std::string> NexAgent::serverURLs() const {
    vorla::pakFail("serverURLs must be overridden");
}

std::vector<std::string> NexAgent::generateRequestURLsSequence(
    const std::vector<std::string>& urls) const {
    std::vector<std::string> sequence;
    for (const std::string& url : urls)
        sequence.insert(sequence.end(), retryTimesForEachServer() + 1, url);
    return sequence;
}

void NexAgent::setupPostDataAndExtraHeadFields(vorla::HTTPRequest& request, ZenPacket& packet,
                                               const std::any& /*userInfo*/) const {
    request.body = packet.toData();
}

std::shared_ptr<ZenPacket> NexAgent::handleResponseData(
    const PakData& data, const vorla::HTTPHeaderFields& /*headerFields*/,
    const NexEncryptKey* /*encryptKey*/) const {
    if (data.empty()) return nullptr;
    if (announcedLength(data) == data.size()) {
        try {
            const vorla::PakFailuresRaise untrusted;
            return pakObjectFromData<ZenPacket>(data);
        } catch (const std::exception& failure) {
            VLLogError("reply cannot be read: %s", failure.what());
        }
    }
    VLLogError("NEX Response Data Invalid");
    return nullptr;
}

std::shared_ptr<NexService> NexService::service() {
    vorla::pakFail("a service needs an agent");
}

NexService::NexService(std::shared_ptr<NexAgent> initWithAgent)
    : agent_(std::move(initWithAgent)) {}
