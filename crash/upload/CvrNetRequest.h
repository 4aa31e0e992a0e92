#pragma once

#include <functional>
#include <memory>
#include <string>

#include "crash/upload/CvrReqDataPackage.h"
#include "crash/upload/CvrWorld.h"

class CvrNetRequestQueue;

/// Hears how a request ended, in the scheduler's tasks.
class CvrNetRequestDelegate {
 public:
    virtual ~CvrNetRequestDelegate() = default;
    virtual void finishWithResponse(const std::shared_ptr<CvrResponsePackage>& /*response*/,
                                    const CvrRequestPackage& /*reqPkg*/) {}
    /// `error` is 0 with an empty text when nothing is known.
    virtual void failWithResponse(const CvrError& /*error*/, const CvrRequestPackage& /*reqPkg*/) {}
};

/// What requests need of the world. All of it outlives them.
struct CvrNetServices {
    CvrModelBase& model;
    CvrScheduler& scheduler;
    CvrTransport& transport;
    CvrNetRequestQueue& queue;
    std::function<bool()> networkAvaliable;
};

/// One exchange with the server. Runs in the scheduler's tasks once it is handed to the queue, and
/// is kept alive by it until the delegate has heard of its end.
class CvrNetRequestBase : public std::enable_shared_from_this<CvrNetRequestBase> {
 public:
    /// A request of this priority runs at once, next to all others.
    static constexpr int32_t priorityBeside = 2;

    virtual ~CvrNetRequestBase() = default;
    CvrNetRequestBase(const CvrNetRequestBase&) = delete;
    CvrNetRequestBase& operator=(const CvrNetRequestBase&) = delete;

    int32_t priority = 1;
    std::string serverUrl;
    CvrReqDataPackage reqDataPkg;
    /// Not owned; must outlive the request.
    CvrNetRequestDelegate* delegate = nullptr;
    /// Whether to fail at once where there is no network.
    bool checkNetStatus = true;
    uint64_t networkType = UINT64_MAX;

    /// Hands the request to the queue.
    void startAsync();

    /// The work: for the queue.
    void _startAsync();

 protected:
    explicit CvrNetRequestBase(const CvrNetServices& services) : services_(services) {}

 private:
    void received(const vorla::HTTPResult& result);
    void doSuccessOperation(const std::shared_ptr<CvrResponsePackage>& response);
    void doFailOperation(const CvrError& error);
    void fail(CvrError::Number number, const char* text);
    void reqFinished();
    [[nodiscard]] vorla::HTTPRequest httpRequest(std::vector<uint8_t> body) const;

    CvrNetServices services_;
    bool _operationFinished = false;
};

/// A request of one of the reporter's parts.
class CvrNetRequest final : public CvrNetRequestBase {
 public:
    /// `strategy` supplies the key, if there is one.
    CvrNetRequest(const CvrNetServices& services, std::string url, CvrRequestPackage requestPkg,
                  CvrNetRequestDelegate* delegate, const CvrLocalStrategy* strategy);
};
