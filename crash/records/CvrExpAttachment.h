#pragma once

#include "crash/CvrLocalObject.h"
#include "crash/records/CvrWire.h"

/// A file that travels with a crash: "crash.log" with the report, "crash_times.log" with the times
/// of merged crashes in ms, separated by ";".
class CvrExpAttachment : public CvrArchivedObject<CvrExpAttachment> {
 public:
    static constexpr const char* name = "CvrExpAttachment";
    /// The type of the texts that are made here.
    static constexpr int8_t typeText = 11;

    int8_t type = 0;
    std::string fileName;
    std::vector<uint8_t> data;

    void createNEXModel(cvr::Attachment& record) const {
        record.type = type;
        record.fileName = fileName;
        record.data = data;
    }

    template <typename Self, typename Visit>
    static void eachField(Self& self, Visit&& visit) {
        CvrLocalObject::eachField(self, visit);
        visit("type", self.type);
        visit("fileName", self.fileName);
        visit("data", self.data);
    }
    friend bool operator==(const CvrExpAttachment&, const CvrExpAttachment&) = default;
};
