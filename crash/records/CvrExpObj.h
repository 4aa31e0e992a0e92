#pragma once

#include <map>
#include <optional>

#include "crash/CvrLocalObject.h"
#include "crash/records/CvrAppInfo.h"
#include "crash/records/CvrAppSession.h"
#include "crash/records/CvrExpAttachment.h"
#include "crash/records/CvrWire.h"

/// One crash, as it is stored and sent. `time` is when it happened by this machine's clock, and
/// `dcount` counts the merged ones.
class CvrExpObj : public CvrArchivedObject<CvrExpObj> {
 public:
    static constexpr const char* name = "CvrExpObj";

    /// "100" for a single crash, "200" for one that others were merged into.
    std::string crashType;
    /// By the server's clock as far as its difference is known, in ms since 1970.
    int64_t cashTime = 0;
    /// The signal's name, or the exception's with the signal's in parentheses.
    std::string exceptionType;
    /// As "%#018llx".
    std::string excepitonAddress;
    /// The lines of the crashed thread's frames.
    std::string callStack;
    /// The code's name, or the exception's reason.
    std::string causedBy;
    /// The crashed thread's place in the list of threads, as "%d".
    std::string threadName;
    /// What makes two crashes the same: 32 upper-case hexadecimal digits. Never sent.
    std::string hash;
    std::map<std::string, std::string> allStacks;
    /// The program itself.
    std::optional<CvrAppInfo> appInfo;
    /// The other images that occur in the stacks.
    std::vector<CvrAppInfo> appInfoList;
    std::string deviceId;
    std::string userId;
    /// Distinguishes this record from any other, also when it is sent again.
    std::string expUid;
    std::vector<CvrExpAttachment> attachmentList;
    /// Facts about machine and process under the keys "A1" and so on, and the host's scene values.
    std::map<std::string, std::string> valueMap;
    /// The host's own data.
    std::map<std::string, std::string> userMap;
    std::optional<CvrAppSession> sessionInfo;

    void createNEXModel(cvr::ExceptionUpload& record) const;

    template <typename Self, typename Visit>
    static void eachField(Self& self, Visit&& visit) {
        CvrLocalObject::eachField(self, visit);
        visit("crashType", self.crashType);
        visit("cashTime", self.cashTime);
        visit("exceptionType", self.exceptionType);
        visit("excepitonAddress", self.excepitonAddress);
        visit("callStack", self.callStack);
        visit("causedBy", self.causedBy);
        visit("threadName", self.threadName);
        visit("hash", self.hash);
        visit("allStacks", self.allStacks);
        visit("appInfo", self.appInfo);
        visit("appInfoList", self.appInfoList);
        visit("deviceId", self.deviceId);
        visit("userId", self.userId);
        visit("expUid", self.expUid);
        visit("attachmentList", self.attachmentList);
        visit("valueMap", self.valueMap);
        visit("userMap", self.userMap);
        visit("sessionInfo", self.sessionInfo);
    }
    friend bool operator==(const CvrExpObj&, const CvrExpObj&) = default;
};
