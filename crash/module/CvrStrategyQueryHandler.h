#pragma once

#include <mutex>
#include <string>

#include "crash/upload/CvrNetRequest.h"

class CvrCrashModule;

/// Asks the server for the strategy: once a day at the most, at the program's activation. Any
/// thread; the work is done in the scheduler's tasks.
class CvrStrategyQueryHandler final : public CvrNetRequestDelegate {
 public:
    explicit CvrStrategyQueryHandler(CvrCrashModule& module);

    /// Asks if it is time to. `time` is in seconds, 0 for now.
    void checkStrategyQuery(double time = 0);
    /// Asks, unless a query is under way.
    void startStrategyQuery();
    void finishWithResponse(const std::shared_ptr<CvrResponsePackage>& response,
                            const CvrRequestPackage& reqPkg) override;
    void failWithResponse(const CvrError& error, const CvrRequestPackage& reqPkg) override;
    /// Ends a query that brought nothing; as long as there was never a strategy, another one
    /// follows in an hour.
    void failQuery(const CvrRequestPackage& reqPkg);

    /// Seconds between two queries of a process; what is below 28800 counts as 86400.
    void setQueryInterval(int64_t seconds);
    [[nodiscard]] int64_t queryInterval() const;

 private:
    void succeeded(const CvrResponsePackage& response, const CvrRequestPackage& reqPkg);
    void setExecuting(bool executing);

    CvrCrashModule& module_;
    mutable std::mutex mutex_;
    bool isExecuting_ = false;
    /// In seconds; 0 for never.
    double lastQueryTime_ = 0;
    std::string lastStrategyDay_;
    int64_t queryInterval_;
};
