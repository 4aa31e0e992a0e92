#include "NEX/NEX/OzuNexAgent.h"

#include <future>
#include <map>
#include <utility>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX/OzuNexEnvironment.h"
#include "platform/base/VLLog.h"

namespace {

/// The structure in a reply, or null when there is none that can be read.
PakObjectPtr replyObject(const std::shared_ptr<ZenPacket>& reply, const std::string& name,
                         const PakClass& expected) {
    if (!reply) return nullptr;
    vorla::pakAssert(expected.isSubclassOf(PakObject::pakClass()),
                     "[theClass isSubclassOfClass:[PakObject class]]");
    try {
        const vorla::PakFailuresRaise untrusted;
        return reply->getObjectAttr(name, expected);
    } catch (const std::exception& failure) {
        VLLogError("reply holds no %s: %s", expected.name(), failure.what());
        return nullptr;
    }
}

}  // namespace

OzuNexAgent::OzuNexAgent(std::optional<std::string> initWithServant)
    : NexAgent(std::move(initWithServant)),
      afSessionManager_(OzuHTTPSessionManager::sharedInstance()) {}

void OzuNexAgent::invocation(const std::optional<std::string>& funcName,
                             const PakObjectPtr& request, const PakClass& forClass,
                             ObjectHandler completeHandle) {
    const auto packet = ZenPacket::packet();
    if (reqAttrType_)
        packet->putObjectAttr(reqAttrName_, *reqAttrType_, request);
    else
        packet->putObjectAttr(reqAttrName_, request);
    invocation(funcName, packet,
               [name = rspAttrName_, &forClass, completeHandle = std::move(completeHandle)](
                   const std::shared_ptr<ZenPacket>& reply) {
                   if (completeHandle) completeHandle(replyObject(reply, name, forClass));
               });
}

std::shared_ptr<NEXHTTPRequestInfo> OzuNexAgent::preparedInfo(
    const std::optional<std::string>& funcName, const std::shared_ptr<ZenPacket>& packet) {
    if (!funcName) vorla::pakRaise("Invalid parameter not satisfying: funcName");
    if (!packet) vorla::pakRaise("Invalid parameter not satisfying: zenPacket");
    if (!servantName()) vorla::pakRaise("The servant must be set!");
    const std::vector<std::string> urls = serverURLs();
    packet->setIVersion(int16_t{2});
    packet->setSServantName(*servantName());
    packet->setSFuncName(*funcName);
    return nexHttpRequestInfoWithfuncName(*funcName, packet, urls);
}

void OzuNexAgent::invocation(const std::optional<std::string>& funcName,
                             const std::shared_ptr<ZenPacket>& parameter,
                             PacketHandler completeHandle) {
    startRequestWithInfo(preparedInfo(funcName, parameter), std::move(completeHandle));
}

std::shared_ptr<ZenPacket> OzuNexAgent::invocation(const std::optional<std::string>& funcName,
                                                   const std::shared_ptr<ZenPacket>& parameter) {
    const auto info = preparedInfo(funcName, parameter);
    // On the main loop the answer would never come while the main thread waits for it.
    if (info) info->completionQueue = vorla::CompletionQueue::Session;
    const auto done = std::make_shared<std::promise<std::shared_ptr<ZenPacket>>>();
    auto reply = done->get_future();
    startRequestWithInfo(
        info, [done](std::shared_ptr<ZenPacket> packet) { done->set_value(std::move(packet)); });
    return reply.get();
}

std::shared_ptr<NEXHTTPRequestInfo> OzuNexAgent::nexHttpRequestInfoWithfuncName(
    const std::string& funcName, const std::shared_ptr<ZenPacket>& zenPacket,
    const std::vector<std::string>& serverURLs) const {
    if (funcName.empty() || !zenPacket) return nullptr;
    auto info = std::make_shared<NEXHTTPRequestInfo>();
    info->funcName = funcName;
    info->zenPacketData = zenPacket->toData();
    info->serverURLs.insert(info->serverURLs.end(), serverURLs.begin(), serverURLs.end());
    info->completionQueue = completionQueue();
    return info;
}

std::optional<vorla::HTTPRequest> OzuNexAgent::nexRequestWithInfo(
    const std::shared_ptr<NEXHTTPRequestInfo>& info) const {
    if (!info || info->serverURLs.empty()) return std::nullopt;
    vorla::HTTPRequest request;
    request.url = info->serverURLs.front();
    request.headerFields = {{"Content-Type", "application/multipart-formdata"},
                            {"Accept", "*/*"},
                            {"Accept-Encoding", "gzip,deflate"},
                            {"Z-UA", zUA()}};
    if (auto guid = zGuid()) request.setValue(std::move(*guid), "Z-Guid");
    request.body = info->zenPacketData;
    return request;
}

void OzuNexAgent::startRequestWithInfo(const std::shared_ptr<NEXHTTPRequestInfo>& info,
                                       PacketHandler completeHandle) {
    auto request = nexRequestWithInfo(info);
    if (!request) {
        if (completeHandle) completeHandle(nullptr);
        return;
    }
    std::shared_ptr<OzuHTTPSessionManager> session;
    {
        const std::lock_guard lock(mutex_);
        session = afSessionManager_;
    }
    // The reply is read on the session's thread whatever the caller's queue is: a large one would
    // make the main loop stutter.
    session->dataTaskWithRequest(
        std::move(*request), [](int64_t, int64_t) {}, [](int64_t, int64_t) {},
        [weakAgent = weak_from_this(), info,
         completeHandle = std::move(completeHandle)](const vorla::HTTPResult& result) {
            requestEnded(weakAgent, info, completeHandle, result);
        },
        vorla::CompletionQueue::Session);
}

void OzuNexAgent::requestEnded(const std::weak_ptr<NexAgent>& weakAgent,
                               const std::shared_ptr<NEXHTTPRequestInfo>& info,
                               const PacketHandler& completeHandle,
                               const vorla::HTTPResult& result) {
    const auto agent = std::static_pointer_cast<OzuNexAgent>(weakAgent.lock());
    if (agent) agent->noteEnd(result.body ? info->serverURLs : std::vector<std::string>());
    if (!result.error.empty())
        VLLogError("%s: %s: %s", info->funcName.c_str(), info->serverURLs.front().c_str(),
                   result.error.c_str());
    std::shared_ptr<ZenPacket> reply;
    if (result.body) {
        if (agent)
            reply = agent->handleResponseData(*result.body, result.response.allHeaderFields,
                                              info->encryptKey);
    } else if (info->serverURLs.size() >= 2) {
        info->serverURLs.erase(info->serverURLs.begin());
        if (agent) agent->startRequestWithInfo(info, completeHandle);
        return;
    }
    if (!completeHandle) return;
    vorla::completeOn(info->completionQueue,
                      [completeHandle, reply = std::move(reply)] { completeHandle(reply); });
}

void OzuNexAgent::noteEnd(const std::vector<std::string>& answeredBy) {
    const std::lock_guard lock(mutex_);
    if (!answeredBy.empty()) preferredURL_ = answeredBy.front();
    haveRetryRequest_ = false;
}

std::shared_ptr<ZenPacket> OzuNexAgent::handleResponseData(
    const PakData& data, const vorla::HTTPHeaderFields& headerFields,
    const NexEncryptKey* encryptKey) const {
    std::map<std::string, std::string> lowered;
    for (const auto& [name, value] : headerFields)
        lowered.insert_or_assign(vorla::asciiLowercase(name), value);
    return NexAgent::handleResponseData(data, {lowered.begin(), lowered.end()}, encryptKey);
}

std::optional<std::string> OzuNexAgent::zGuid() const {
    return OzuNexEnvironment::zGuid();
}

std::string OzuNexAgent::zUA() const {
    return OzuNexEnvironment::zUA();
}

bool OzuNexAgent::haveRetryRequest() const {
    const std::lock_guard lock(mutex_);
    return haveRetryRequest_;
}

std::string OzuNexAgent::preferredURL() const {
    const std::lock_guard lock(mutex_);
    return preferredURL_;
}

void OzuNexAgent::setAfSessionManager(std::shared_ptr<OzuHTTPSessionManager> session) {
    const std::lock_guard lock(mutex_);
    afSessionManager_ = std::move(session);
}
