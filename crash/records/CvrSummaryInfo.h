#pragma once

#include "crash/CvrLocalObject.h"
#include "crash/records/CvrWire.h"

/// Why a user record was made. Sent: never renumber.
enum CvrStartType : int32_t {
    CvrStartTypeFirst = 1,
    CvrStartTypeDaily = 3,
    CvrStartTypeUserChange = 4,
};

/// One use of the program: that a user has it running at some time.
class CvrSummaryInfo : public CvrArchivedObject<CvrSummaryInfo> {
 public:
    static constexpr const char* name = "CvrSummaryInfo";

    /// In ms since 1970, by the server's clock as far as its difference is known.
    int64_t startTime = 0;
    int32_t startType = 0;
    std::string userid;
    /// The process name.
    std::string proc;
    std::string sessionId;

    void createNEXModel(cvr::SummaryInfo& record) const {
        record.startTime = startTime;
        record.startType = static_cast<int8_t>(startType);
        record.userid = userid;
        record.proc = proc;
        record.sessionId = sessionId;
    }

    template <typename Self, typename Visit>
    static void eachField(Self& self, Visit&& visit) {
        CvrLocalObject::eachField(self, visit);
        visit("startTime", self.startTime);
        visit("startType", self.startType);
        visit("userid", self.userid);
        visit("proc", self.proc);
        visit("sessionId", self.sessionId);
    }
    friend bool operator==(const CvrSummaryInfo&, const CvrSummaryInfo&) = default;
};
