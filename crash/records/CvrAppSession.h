#pragma once

#include "crash/CvrLocalObject.h"
#include "crash/records/CvrWire.h"

/// What the host has said about its run: its identifier and the events before the crash, the oldest
/// first.
class CvrAppSession : public CvrArchivedObject<CvrAppSession> {
 public:
    static constexpr const char* name = "CvrAppSession";

    std::string sessionId;
    std::vector<std::string> events;

    void createNEXModel(cvr::AppSession& record) const {
        record.sessionId = sessionId;
        record.events = events;
    }

    template <typename Self, typename Visit>
    static void eachField(Self& self, Visit&& visit) {
        CvrLocalObject::eachField(self, visit);
        visit("sessionId", self.sessionId);
        visit("events", self.events);
    }
    friend bool operator==(const CvrAppSession&, const CvrAppSession&) = default;
};
