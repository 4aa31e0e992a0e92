#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "crash/archive/StoreFolder.h"
#include "crash/upload/CvrNetRequest.h"
#include "crash/upload/CvrUploadPackages.h"

class CvrCrashModule;

/// Sends the user records, once a day at the most. Any thread; the work is done in the scheduler's
/// tasks.
class CvrUserInfoUploadHandler final : public CvrNetRequestDelegate {
 public:
    explicit CvrUserInfoUploadHandler(CvrCrashModule& module);

    /// Whether the records of today still have to go out.
    bool checkNeedUpload();
    bool haveUserInfoData();
    /// A package with all stored records, and the claim to send them: `cleanUserInfoData` ends it.
    /// Null when there are none, or they are being sent already.
    std::shared_ptr<const CvrUserInfoPackage> getStartUploadData();
    void startUserInfoUpload();
    /// Ends the sending; with a package its records have arrived and are deleted. Returns whether
    /// there were any.
    bool cleanUserInfoData(const CvrUserInfoPackage* package);
    /// Nothing to do: the next activation tries again.
    void restartUpload() {}
    /// In ms; 0 for never.
    [[nodiscard]] int64_t lastUploadTime() const;

    void finishWithResponse(const std::shared_ptr<CvrResponsePackage>& response,
                            const CvrRequestPackage& reqPkg) override;
    void failWithResponse(const CvrError& error, const CvrRequestPackage& reqPkg) override;

 private:
    void endUpload();
    [[nodiscard]] std::string today() const;

    CvrCrashModule& module_;
    mutable std::mutex mutex_;
    bool uplaoding_ = false;
    /// Whether a package was made in this process.
    bool isStart_ = false;
    size_t smcount_ = 0;
    std::string lastUploadDay_;
    int64_t lastUploadTime_ = 0;
    vorla::StoreLock claim_;
};
