#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "crash/CvrCrashListener.h"
#include "crash/archive/StoreFolder.h"
#include "crash/upload/CvrNetRequest.h"
#include "crash/upload/CvrUploadPackages.h"

class CvrCrashModule;

/// Hears how an upload that was asked for by hand has ended, in the scheduler's tasks. Not
/// overriding an operation is fine.
class CvrManualUploadDelegate {
 public:
    virtual ~CvrManualUploadDelegate() = default;
    virtual void onCrashUploadSucess() {}
    virtual void onCrashUploadFailed() {}
};

/// Is asked whether uploads are allowed, after each; the answer changes nothing.
class CvrCanUploadDelegate {
 public:
    virtual ~CvrCanUploadDelegate() = default;
    virtual bool isUploadAllowed() { return true; }
};

/// Sends stored crashes, one at a time, the next one 120 seconds later. Any thread; the work is
/// done in the scheduler's tasks. What could not be sent stays for the next start.
class CvrCrashUploadHandler final : public CvrNetRequestDelegate, public CvrCrashListener {
 public:
    explicit CvrCrashUploadHandler(CvrCrashModule& module) : module_(module) {}

    /// Has `doUpload` done; always true.
    bool uploadCrashes();
    [[nodiscard]] bool isUploading() const;
    /// Sends one crash; false when there is none or one is under way already.
    bool doUpload();
    /// The crashes to send, at most `limit` of them looked at; those of another version of the
    /// program are deleted instead.
    std::vector<CvrExpObj> getCrashToUpload(int32_t limit);
    /// Sends the list as it is. A non-empty identifier or version replaces that of the program.
    bool doUploadExps(const std::vector<CvrExpObj>& exps, const std::string& withBundleId,
                      const std::string& bundleVer, bool isManual,
                      CvrManualUploadDelegate* delegate);
    /// What becomes of crashes that have arrived.
    void doUploadPostProcess(const std::vector<CvrExpObj>& exps);
    void setCanUploadDelegate(CvrCanUploadDelegate* delegate);

    /// Does nothing: a crash is sent by the next start.
    void onCrashHappened(const CvrExpObj& exp) override;
    /// Would send the crash and wait for that, five seconds at the most. Nothing calls it: the
    /// waiting is not for a signal handler, nor for the main thread.
    void checkAndUploadAfterCrash(const CvrExpObj& exp);

    /// Whether there is something to send; the second has sent records of earlier days deleted.
    bool expExist();
    bool cleanInvalidExp();

    void finishWithResponse(const std::shared_ptr<CvrResponsePackage>& response,
                            const CvrRequestPackage& reqPkg) override;
    void failWithResponse(const CvrError& error, const CvrRequestPackage& reqPkg) override;

 private:
    bool begin(bool isManual, CvrManualUploadDelegate* delegate);
    void end(bool succeeded);

    CvrCrashModule& module_;
    mutable std::mutex mutex_;
    bool isUploading_ = false;
    bool uploadByUser_ = false;
    CvrManualUploadDelegate* del_ = nullptr;
    CvrCanUploadDelegate* cranUploadDel_ = nullptr;
    vorla::StoreLock claim_;
};
