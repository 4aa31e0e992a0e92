#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "NEX/NEX+PAK/RMIModelNEX/NEXHTTPRequestInfo.h"
#include "NEX/NEX+PAK/RMIModelNEX/NexAgent.h"
#include "NEX/NEX/OzuHTTPSessionManager.h"

/// Calls a servant by HTTP: one POST of a packet to the first address that answers with anything at
/// all, whatever its status. Each address is tried once. Which they are is left to subclasses.
///
/// Calls may be made on any thread, and never block but for the one that says so. Callbacks run
/// once, on the main loop unless `completionQueue` says otherwise; a call that cannot even be sent
/// calls back in line. When the agent is released meanwhile, a reply is not read and the callback
/// gets null; no further address is tried, and the callback is then never called.
class OzuNexAgent : public NexAgent {
 public:
    using PacketHandler = std::function<void(std::shared_ptr<ZenPacket>)>;
    using ObjectHandler = std::function<void(PakObjectPtr)>;

    explicit OzuNexAgent(std::optional<std::string> initWithServant);

    /// Sends a structure and gets one back: null when no reply came, or the reply has none.
    void invocation(const std::optional<std::string>& funcName, const PakObjectPtr& request,
                    const PakClass& forClass, ObjectHandler completeHandle);

    /// Sends a packet and gets one back, or null. Raises PakInconsistencyException when function
    /// name, packet or servant are missing.
    void invocation(const std::optional<std::string>& funcName,
                    const std::shared_ptr<ZenPacket>& parameter, PacketHandler completeHandle);

    /// The same, waiting for the reply without a limit of its own: not for the main thread.
    std::shared_ptr<ZenPacket> invocation(const std::optional<std::string>& funcName,
                                          const std::shared_ptr<ZenPacket>& parameter);

    /// Null for an empty function name and for no packet.
    [[nodiscard]] std::shared_ptr<NEXHTTPRequestInfo> nexHttpRequestInfoWithfuncName(
        const std::string& funcName, const std::shared_ptr<ZenPacket>& zenPacket,
        const std::vector<std::string>& serverURLs) const;

    /// The request for the first address; none when there is no address left.
    [[nodiscard]] std::optional<vorla::HTTPRequest> nexRequestWithInfo(
        const std::shared_ptr<NEXHTTPRequestInfo>& info) const;

    void startRequestWithInfo(const std::shared_ptr<NEXHTTPRequestInfo>& info,
                              PacketHandler completeHandle);

    [[nodiscard]] std::shared_ptr<ZenPacket> handleResponseData(
        const PakData& data, const vorla::HTTPHeaderFields& headerFields,
        const NexEncryptKey* encryptKey) const override;

    [[nodiscard]] std::optional<std::string> zGuid() const override;
    [[nodiscard]] virtual std::string zUA() const;
    [[nodiscard]] virtual vorla::CompletionQueue completionQueue() const {
        return vorla::CompletionQueue::Main;
    }

    /// Names and type of the attributes that hold request and reply. Set before calls are made.
    [[nodiscard]] const std::string& reqAttrName() const { return reqAttrName_; }
    [[nodiscard]] const std::optional<std::string>& reqAttrType() const { return reqAttrType_; }
    void setReqAttrType(std::optional<std::string> type) { reqAttrType_ = std::move(type); }
    [[nodiscard]] const std::string& rspAttrName() const { return rspAttrName_; }

    [[nodiscard]] bool haveRetryRequest() const;
    /// The address that answered last; empty before the first answer.
    [[nodiscard]] std::string preferredURL() const;

    void setAfSessionManager(std::shared_ptr<OzuHTTPSessionManager> session);

 private:
    static void requestEnded(const std::weak_ptr<NexAgent>& weakAgent,
                             const std::shared_ptr<NEXHTTPRequestInfo>& info,
                             const PacketHandler& completeHandle, const vorla::HTTPResult& result);
    std::shared_ptr<NEXHTTPRequestInfo> preparedInfo(const std::optional<std::string>& funcName,
                                                     const std::shared_ptr<ZenPacket>& packet);
    void noteEnd(const std::vector<std::string>& answeredBy);

    const std::string reqAttrName_ = "req";
    std::optional<std::string> reqAttrType_;
    const std::string rspAttrName_ = "rsp";
    mutable std::mutex mutex_;
    std::shared_ptr<OzuHTTPSessionManager> afSessionManager_;
    bool haveRetryRequest_ = false;
    std::string preferredURL_;
};
