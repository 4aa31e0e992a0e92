#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "crash/records/CvrLocalStrategy.h"
#include "crash/upload/CvrRequestPackage.h"

/// Why a request could not be made or its reply not be understood.
struct CvrError {
    static constexpr const char* domain = "CvrErrorDomain";
    enum Number : int {
        None = 0,
        /// Compression or encryption.
        Packing = 5,
        NoPackage = 8,
        /// Network or address.
        Network = 15,
        /// A reply that is none.
        Reply = 16,
    };
    int errnoVal = None;
    std::string description;

    void populateError(Number number, std::string text) {
        errnoVal = number;
        description = std::move(text);
    }
};

/// A reply.
class CvrResponsePackage {
 public:
    /// 0 is success.
    int8_t result = 0;
    int32_t cmd = 0;
    /// The body, read by what is registered for the command; null for none, or an unreadable one.
    std::shared_ptr<CvrLocalObjInitWithNexProtocol> sBuffer;
    std::string gateWayIp;
    /// In ms since 1970; 0 for none.
    int64_t serverTime = 0;
    uint64_t networkType = UINT64_MAX;

    /// Copies the fields and reads the body, which is neither encrypted nor compressed any more.
    void initWithNEXModel(const cvr::ResponsePkg& record);
    /// The body as a strategy, if that is what came.
    [[nodiscard]] std::shared_ptr<const CvrLocalStrategy> strategy() const;
};

/// Turns a request into bytes, and bytes into a reply: the body packed, compressed and encrypted
/// within a plain record.
class CvrReqDataPackage {
 public:
    std::string reqKey = "detail";
    std::string reqFunc = "sync";
    std::string reqServant = "CvrServer";
    std::string encKey = CvrLocalStrategy::defaultEncKey;
    std::string encPubKey = CvrLocalStrategy::defaultEncPubKey;
    std::optional<CvrRequestPackage> requestPackage;

    /// None with `error` set.
    [[nodiscard]] std::optional<std::vector<uint8_t>> createReqData(CvrError& error) const;
    /// Null with `error` set, whatever the bytes are.
    [[nodiscard]] std::shared_ptr<CvrResponsePackage> initWithRspData(std::span<const uint8_t> data,
                                                                      CvrError& error) const;

 private:
    [[nodiscard]] bool packBody(std::vector<uint8_t>& body) const;
    [[nodiscard]] bool unpackBody(std::vector<uint8_t>& body) const;
};
