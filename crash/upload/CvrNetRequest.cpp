#include "crash/upload/CvrNetRequest.h"

#include <charconv>

#include "crash/CvrLog.h"
#include "crash/upload/CvrNetRequestQueue.h"
#include "crash/upload/CvrNetworkUtil.h"

namespace {

constexpr long statusOk = 200;

/// Whether the reply came as a whole: its length must have been announced, and be true.
bool isWhole(const vorla::HTTPResult& result) {
    if (result.response.statusCode != statusOk || !result.body) return false;
    for (const auto& [name, value] : result.response.allHeaderFields)
        if (vorla::asciiLowercase(name) == "content-length")
            return value == std::to_string(result.body->size());
    return false;
}

/// A server on this machine needs no network.
bool isOnThisMachine(const std::string& url) {
    const size_t start = url.find("://");
    if (start == std::string::npos) return false;
    const std::string host = url.substr(start + 3);
    for (const char* own : {"127.", "localhost", "[::1]"})
        if (host.starts_with(own)) return true;
    return false;
}

}  // namespace

CvrNetRequest::CvrNetRequest(const CvrNetServices& services, std::string url,
                             CvrRequestPackage requestPkg, CvrNetRequestDelegate* owner,
                             const CvrLocalStrategy* strategy)
    : CvrNetRequestBase(services) {
    serverUrl = std::move(url);
    delegate = owner;
    reqDataPkg.requestPackage = std::move(requestPkg);
    if (strategy) reqDataPkg.encKey = strategy->encKey;
}

void CvrNetRequestBase::startAsync() {
    services_.queue.addOneRequest(shared_from_this());
}

void CvrNetRequestBase::reqFinished() {
    services_.queue.requestFinish(shared_from_this());
}

vorla::HTTPRequest CvrNetRequestBase::httpRequest(std::vector<uint8_t> body) const {
    const CvrModelBase::Facts facts = services_.model.facts();
    vorla::HTTPRequest request;
    request.url = serverUrl;
    request.setValue(facts.appId, "pid");
    request.setValue(facts.appVersion, "pver");
    request.setValue(facts.bundleId, "bid");
    request.setValue("application/octet-stream", "Content-Type");
    request.body = std::move(body);
    return request;
}

void CvrNetRequestBase::fail(CvrError::Number number, const char* text) {
    CvrError error;
    error.populateError(number, text);
    doFailOperation(error);
}

void CvrNetRequestBase::_startAsync() {
    if (checkNetStatus && !isOnThisMachine(serverUrl) && !services_.networkAvaliable())
        return fail(CvrError::Network, "error request network not avalibale");
    if (serverUrl.empty()) return fail(CvrError::Network, "error request url is nil");
    CvrError error;
    auto body = reqDataPkg.createReqData(error);
    if (!body) return fail(CvrError::Network, "error create data is nil");
    networkType = CvrNetworkUtil::networkType();
    const CvrRequestPackage& package = *reqDataPkg.requestPackage;
    CvrLogAlways(
        "<WORKFLOW>: sdk send an request to server[%s] with %d and data[%d] for %s, %s[%s]",
        serverUrl.c_str(), static_cast<int>(package.cmd), static_cast<int>(body->size()),
        package.productId.c_str(), package.bundleId.c_str(), package.productVersion.c_str());
    services_.transport.send(httpRequest(std::move(*body)), [self = shared_from_this()](
                                                                const vorla::HTTPResult& result) {
        self->services_.scheduler.async([self, result] { self->received(result); });
    });
}

void CvrNetRequestBase::received(const vorla::HTTPResult& result) {
    CvrError error;
    if (result.response.statusCode == 0) {
        error.populateError(CvrError::Network, result.error);
        return doFailOperation(error);
    }
    std::shared_ptr<CvrResponsePackage> response;
    if (isWhole(result))
        response = reqDataPkg.initWithRspData(*result.body, error);
    else
        error.populateError(CvrError::Reply, "no whole reply of status 200");
    if (!response) {
        CvrLogError("<ERROR> CVR: response data parsing occur error: %s",
                    error.description.c_str());
        return doFailOperation(error);
    }
    response->networkType = networkType;
    doSuccessOperation(response);
}

void CvrNetRequestBase::doSuccessOperation(const std::shared_ptr<CvrResponsePackage>& response) {
    if (std::exchange(_operationFinished, true)) return;
    const int64_t now = services_.model.now();
    services_.model.change([&](CvrModelBase::Facts& facts) {
        if (!response->gateWayIp.empty()) facts.gatewayIP = response->gateWayIp;
        if (response->serverTime != 0)
            __builtin_sub_overflow(response->serverTime, now, &facts.serverTimeDelta);
    });
    if (delegate) delegate->finishWithResponse(response, *reqDataPkg.requestPackage);
    reqFinished();
}

void CvrNetRequestBase::doFailOperation(const CvrError& error) {
    if (std::exchange(_operationFinished, true)) return;
    CvrLogInfo("<INFO> CVR: ******failed to cvr net request to url %s with delefate %p ",
               serverUrl.c_str(), static_cast<void*>(delegate));
    if (delegate && reqDataPkg.requestPackage)
        delegate->failWithResponse(error, *reqDataPkg.requestPackage);
    reqFinished();
}
