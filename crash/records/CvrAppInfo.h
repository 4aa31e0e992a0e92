#pragma once

#include "crash/CvrLocalObject.h"
#include "crash/records/CvrWire.h"

/// One loaded image: the program itself or a library. All values are texts, absent ones empty.
class CvrAppInfo : public CvrArchivedObject<CvrAppInfo> {
 public:
    static constexpr const char* name = "CvrAppInfo";

    /// The file's name without its folder.
    std::string processName;
    std::string cpuArchVersion;
    /// 32 lower-case hexadecimal digits.
    std::string processUUID;
    /// As "%#018llx", like `endAddress`.
    std::string processBaseAddr;
    std::string version;
    std::string endAddress;
    std::string path;

    void createNEXModel(cvr::AppInfo& record) const;

    template <typename Self, typename Visit>
    static void eachField(Self& self, Visit&& visit) {
        CvrLocalObject::eachField(self, visit);
        visit("processName", self.processName);
        visit("cpuArchVersion", self.cpuArchVersion);
        visit("processUUID", self.processUUID);
        visit("processBaseAddr", self.processBaseAddr);
        visit("version", self.version);
        visit("endAddress", self.endAddress);
        visit("path", self.path);
    }
    friend bool operator==(const CvrAppInfo&, const CvrAppInfo&) = default;
};
