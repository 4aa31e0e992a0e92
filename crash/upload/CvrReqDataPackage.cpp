#include "crash/upload/CvrReqDataPackage.h"

#include <atomic>
#include <exception>

#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"
#include "crash/CvrLog.h"
#include "crash/upload/CvrEncryptUtil.h"
#include "crash/upload/CvrZipUtil.h"

namespace {

int32_t nextRequestId() {
    static std::atomic<int32_t> count = 0;
    return count++;
}

}  // namespace

void CvrResponsePackage::initWithNEXModel(const cvr::ResponsePkg& record) {
    cmd = record.cmd;
    result = record.result;
    serverTime = record.serverTime;
    gateWayIp = record.gateWayIp;
    if (cmd == 0) return;
    const auto type = CvrProtocolDataRegister::sharedInstance().getResponseObjectType(cmd);
    if (!type) return;
    auto body = type();
    if (!body)
        CvrLogError("<ERROR> CVR: the class for the body of command %d reads none", cmd);
    else if (body->initLocalObjWithNexBuffer(record.sBuffer))
        sBuffer = std::move(body);
}

std::shared_ptr<const CvrLocalStrategy> CvrResponsePackage::strategy() const {
    return cmd == CvrCommandQueryStrategy
               ? std::dynamic_pointer_cast<const CvrLocalStrategy>(sBuffer)
               : nullptr;
}

bool CvrReqDataPackage::packBody(std::vector<uint8_t>& body) const {
    const auto zip = CvrZipUtil::getCvrZipUtil(CvrZipUtil::gzip);
    const auto cipher = CvrEncryptUtil::getEncrypt(CvrEncryptUtil::des);
    const auto zipped = zip ? zip->zip(body) : std::nullopt;
    auto packed = zipped && cipher ? cipher->encrypt(*zipped, encKey) : std::nullopt;
    if (!packed) return false;
    body = std::move(*packed);
    return true;
}

bool CvrReqDataPackage::unpackBody(std::vector<uint8_t>& body) const {
    const auto zip = CvrZipUtil::getCvrZipUtil(CvrZipUtil::gzip);
    const auto cipher = CvrEncryptUtil::getEncrypt(CvrEncryptUtil::des);
    const auto zipped = cipher ? cipher->decrypt(body, encPubKey) : std::nullopt;
    auto plain = zipped && zip ? zip->unzip(*zipped) : std::nullopt;
    if (!plain) return false;
    body = std::move(*plain);
    return true;
}

std::optional<std::vector<uint8_t>> CvrReqDataPackage::createReqData(CvrError& error) const {
    if (!requestPackage) {
        error.populateError(CvrError::NoPackage, "error request package is nil");
        return std::nullopt;
    }
    cvr::RequestPkg record;
    try {
        requestPackage->createNEXModel(record);
        if (!record.sBuffer.empty() && !packBody(record.sBuffer)) {
            error.populateError(CvrError::Packing, "error compressing or encrypting the body");
            CvrLogError("<ERROR> CVR: %s", error.description.c_str());
            return std::nullopt;
        }
        analyticsnex::ZenPacket packet;
        packet.iRequestId = nextRequestId();
        packet.sServantName = reqServant;
        packet.sFuncName = reqFunc;
        packet.attributes().put(reqKey, record);
        const std::string bytes = packet.encode();
        return std::vector<uint8_t>(bytes.begin(), bytes.end());
    } catch (const std::exception& fault) {
        error.populateError(CvrError::Packing, fault.what());
        CvrLogError("<ERROR> CVR: %s", fault.what());
        return std::nullopt;
    }
}

std::shared_ptr<CvrResponsePackage> CvrReqDataPackage::initWithRspData(
    std::span<const uint8_t> data, CvrError& error) const {
    cvr::ResponsePkg record;
    try {
        analyticsnex::ZenPacket packet;
        packet.decode(data.data(), data.size());
        packet.attributes().get(reqKey, record);
    } catch (const std::exception& fault) {
        error.populateError(CvrError::Reply, fault.what());
        return nullptr;
    }
    if (!record.sBuffer.empty() && !unpackBody(record.sBuffer)) {
        error.populateError(CvrError::Packing, "error decrypting or decompressing the body");
        return nullptr;
    }
    auto response = std::make_shared<CvrResponsePackage>();
    response->initWithNEXModel(record);
    return response;
}
