#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "crash/CvrPreparedCrash.h"
#include "crash/facts/CvrKeyStore.h"
#include "crash/module/CvrCrashUploadHandler.h"
#include "crash/module/CvrStrategyQueryHandler.h"
#include "crash/module/CvrUserInfoUploadHandler.h"
#include "crash/store/CvrFilePersistHandler.h"
#include "crash/upload/CvrNetRequestQueue.h"
#include "platform/base/NotificationCenter.h"

/// The half of crash reporting that catches a crash, as the module uses it. Any thread.
class CvrCapture {
 public:
    virtual ~CvrCapture() = default;
    virtual void prepare(const CvrPreparedCrash& state) = 0;
    virtual void installHandler() = 0;
    virtual void uninstallHandler() = 0;
    /// Whether the handlers are in place; both log when another party has taken over.
    virtual bool checkSignalHandler() = 0;
    virtual bool checkNSExceptionHandler() = 0;
    virtual void registCrashListerner(CvrCrashListener* listener) = 0;
    virtual void setExpMergeStrategy(bool merge) = 0;
    virtual bool isExpMergeUpload() = 0;
    virtual void setProcName(const std::string& name) = 0;
};

/// What the module works with and on. All of it outlives the module.
struct CvrEnvironment {
    CvrModelBase& model;
    CvrFilePersistHandler& store;
    CvrCapture& capture;
    CvrScheduler& scheduler;
    CvrTransport& transport;
    CvrKeyStore& keys;
    /// The built-in address of the server, empty for none: then nothing is ever sent, wherever a
    /// strategy points.
    std::function<std::string()> syncEndpoint;
    std::function<bool()> networkAvaliable;
};

/// The lifecycle of crash reporting: installs and removes the handlers as host and server wish,
/// asks for the strategy, makes the user records. Any thread; what takes time is done in the
/// scheduler's tasks, which must have come to an end before the module does.
class CvrCrashModule {
 public:
    static CvrCrashModule& sharedInstance();

    explicit CvrCrashModule(const CvrEnvironment& environment);
    ~CvrCrashModule();
    CvrCrashModule(const CvrCrashModule&) = delete;
    CvrCrashModule& operator=(const CvrCrashModule&) = delete;

    void enableModule();
    void disableModule();
    /// Follows what host and strategy want now; whether that changed anything.
    bool checkAndEnable();
    /// The host's wish; true at first.
    void setUserEnabled(bool enabled);
    [[nodiscard]] bool isEnabled() const;
    /// Whether the start has come to its end.
    [[nodiscard]] bool isStarted() const;

    void initCrashProperties();
    bool fetchCrashStrategyFormDB();
    /// Takes over a strategy from the server. False for none.
    bool processStrategy(const std::shared_ptr<const CvrLocalStrategy>& strategy);
    /// Null for none.
    [[nodiscard]] std::shared_ptr<const CvrLocalStrategy> localStrategy() const;
    /// Whether there was ever a strategy, from disk or from the server.
    [[nodiscard]] bool hasLocalDB() const;
    void setHasSyncServer(bool reached);

    /// Whether there is a server to send to.
    [[nodiscard]] bool hasEndpoint() const { return !environment_.syncEndpoint().empty(); }
    /// Where crashes go, and where queries and user records go: the strategy's addresses as far as
    /// they are to be trusted, else the built-in one.
    [[nodiscard]] std::string targetUrl() const;
    [[nodiscard]] std::string queryUrl() const;

    /// The program becomes the active one, or ceases to be.
    void appResumed();
    void appEnterBackground();
    void appCVRStarted();
    void appCVRResumed();
    void appCVREnterBack() {}
    void checkAndUploadUserInfo();

    /// A record of the given kind; none when the server has switched the module off.
    std::optional<CvrSummaryInfo> creatSummaryInfo(CvrStartType startType, int64_t withTime);
    /// User or device have changed.
    void insertUserChangeSm();
    void insertDailySummaryInfo();
    void initDailySummaryInfoTimer();
    void closeDailySummaryInfodTimer();

    [[nodiscard]] bool isExpMergeUpload() const { return environment_.capture.isExpMergeUpload(); }
    [[nodiscard]] CvrModelBase& model() const { return environment_.model; }
    [[nodiscard]] CvrFilePersistHandler& store() const { return environment_.store; }
    [[nodiscard]] CvrScheduler& scheduler() const { return environment_.scheduler; }
    [[nodiscard]] CvrNetServices netServices();
    CvrCrashUploadHandler& crashUploadHandler() { return crashUpload_; }
    CvrStrategyQueryHandler& strategyQueryHandler() { return strategyQuery_; }
    CvrUserInfoUploadHandler& userInfoUploadHandler() { return userInfoUpload_; }

 private:
    void finishStart();
    void registObserver();
    void unregistObserver();
    void prepareCrash();
    [[nodiscard]] std::string allowedUrl(const std::string& wanted) const;
    void saveSummary(CvrStartType startType, int64_t time);

    const CvrEnvironment environment_;
    CvrNetRequestQueue queue_;
    CvrCrashUploadHandler crashUpload_;
    CvrStrategyQueryHandler strategyQuery_;
    CvrUserInfoUploadHandler userInfoUpload_;

    mutable std::recursive_mutex mutex_;
    bool userEnabled_ = true;
    bool crashModuleEnabled_ = false;
    bool inited_ = false;
    bool cvrStarted_ = false;
    bool cpropInited_ = false;
    bool listening_ = false;
    bool hasLocalDB_ = false;
    bool hasSyncServer_ = false;
    std::shared_ptr<const CvrLocalStrategy> localStrategy_;
    /// Which of the timers that were ever started is the valid one; 0 for none.
    uint64_t dailyTimer_ = 0;
    uint64_t lastTimer_ = 0;
    int64_t lastResume_ = 0;
    std::mutex prepareMutex_;
    vorla::NotificationObservers observers_;
};
