#pragma once

#include <memory>

#include "NEX/NEX/OzuHTTPSessionManager.h"
#include "crash/upload/CvrWorld.h"

/// Sends over HTTP on a thread that starts with the first request. Redirects are not followed.
class CvrHttpTransport final : public CvrTransport {
 public:
    /// 120 seconds for everything, a reply of 1 MiB at the most.
    static vorla::HTTPLimits defaultLimits();

    explicit CvrHttpTransport(vorla::HTTPLimits limits = defaultLimits()) : session_(limits) {}

    void send(vorla::HTTPRequest request, Completion completion) override;

 private:
    OzuHTTPSessionManager session_;
};
