#pragma once

#include <map>
#include <span>

#include "crash/CvrLocalObject.h"
#include "crash/records/CvrTransferProtocols.h"

/// What the server wants of the crash reporter on this machine.
class CvrLocalStrategy : public CvrArchivedObject<CvrLocalStrategy>,
                         public CvrLocalObjInitWithNexProtocol {
 public:
    static constexpr const char* name = "CvrLocalStrategy";
    static constexpr const char* defaultEncKey = "#$Q!V!Q$";
    static constexpr const char* defaultEncPubKey = "D]%N%N%[";

    /// Whether crashes are caught at all.
    bool enable = false;
    bool userInfoEnable = false;
    /// Whether to ask for a newer strategy.
    bool queryEnable = false;
    /// Where queries and user records go, and where crashes go; empty for the built-in address.
    std::string url;
    std::string expUrl;
    /// The DES key of requests: at least 8 bytes, the first 8 count.
    std::string encKey = defaultEncKey;
    /// The one of replies: stored and compared, but replies keep to the default.
    std::string encPubKey = defaultEncPubKey;
    /// "queryInterval": seconds between queries. "isMerge": "true" merges crashes of one hash.
    std::map<std::string, std::string> valueMap;

    /// Two strategies are never equal when just one of them has values.
    [[nodiscard]] bool isEqual(const CvrLocalStrategy& other) const;
    [[nodiscard]] std::string debugDescription() const;

    /// Takes over the `cvr::CvrStrategy` whose fields the bytes are. False, a log line and nothing
    /// changed when they are none. Keys that are missing or too short leave the present ones.
    bool initLocalObjWithNexBuffer(std::span<const uint8_t> buffer) override;

    template <typename Self, typename Visit>
    static void eachField(Self& self, Visit&& visit) {
        CvrLocalObject::eachField(self, visit);
        visit("enable", self.enable);
        visit("userInfoEnable", self.userInfoEnable);
        visit("queryEnable", self.queryEnable);
        visit("url", self.url);
        visit("expUrl", self.expUrl);
        visit("encKey", self.encKey);
        visit("encPubKey", self.encPubKey);
        visit("valueMap", self.valueMap);
    }
};
