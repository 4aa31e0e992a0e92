#include "crash/upload/CvrRequestPackage.h"

CvrRequestPackage::CvrRequestPackage(const CvrModelBase::Facts& data, int32_t command,
                                     std::shared_ptr<const CvrObjTransToPakBufferProtocol> body)
    : platformId(static_cast<int8_t>(data.platformId)),
      productId(data.appId),
      bundleId(data.bundleId),
      productVersion(data.appVersion),
      channel(data.channel),
      sdkVersion(data.sdkVersion),
      cmd(command),
      sBuffer(std::move(body)),
      hardwareOs(data.osVer),
      model(data.hardwareModel),
      sessionId(data.sessionId) {}

CvrRequestPackage CvrRequestPackage::createPackageForBlockData(
    const CvrModelBase::Facts& data, std::shared_ptr<const CvrObjTransToPakBufferProtocol> body) {
    return {data, CvrCommandExceptions, std::move(body)};
}

void CvrRequestPackage::createNEXModel(cvr::RequestPkg& record) const {
    record.platformId = platformId;
    record.productId = productId;
    record.bundleId = bundleId;
    record.productVersion = productVersion;
    record.channel = channel;
    record.sdkVersion = sdkVersion;
    record.cmd = cmd;
    if (sBuffer) sBuffer->setDataToBuffer(&record.sBuffer);
    record.model = model;
    record.hardwareOs = hardwareOs;
    record.reserved = reserved;
    record.sessionId = sessionId;
}
