// A reply whose body is sealed as a server would: the input is compressed and encrypted, or
// encrypted alone, under the command that its first byte chooses. What comes of it as a strategy is
// kept and read again, and seals the next request.

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "NEX/NEX+PAK/SerializationPAK/compact/ZenPacket.h"
#include "crash/upload/CvrEncryptUtil.h"
#include "crash/upload/CvrUploadPackages.h"
#include "crash/upload/CvrZipUtil.h"
#include "fuzz/FuzzCrashReplies.h"

namespace {

/// A reply as a server writes it; the system itself only reads them.
struct Reply {
    static constexpr const char* structName = cvr::ResponsePkg::structName;
    int8_t result;
    int32_t cmd;
    std::vector<uint8_t> body;

    void writeTo(analyticspak::PakOutputStream& stream) const {
        stream.write(result, 0);
        stream.write(cmd, 1);
        stream.write(body, 2);
        stream.write(std::string("127.0.0.1"), 3);
        stream.write(int64_t{1}, 4);
    }
};

std::string sealed(const CvrReqDataPackage& package, uint8_t choice,
                   std::span<const uint8_t> body) {
    constexpr int32_t commands[] = {CvrCommandQueryStrategy, CvrCommandUserInfo,
                                    CvrCommandExceptions, CvrCommandQueryWithUserInfo};
    const auto zipped = (choice & 4) == 0 ? GZipCvrZipUtil().zip(body) : std::nullopt;
    const auto secret = DESCvrEncryptUtil().encrypt(
        zipped ? std::span<const uint8_t>(*zipped) : body, package.encPubKey);
    analyticsnex::ZenPacket packet;
    packet.iRequestId = 1;
    packet.sServantName = package.reqServant;
    packet.sFuncName = package.reqFunc;
    packet.attributes().put(
        package.reqKey, Reply{0, commands[choice & 3], secret.value_or(std::vector<uint8_t>())});
    return packet.encode();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    vorla::fuzz::prepareForReplies();
    if (size == 0) return 0;
    CvrReqDataPackage package;
    const std::string reply = sealed(package, bytes[0], {bytes + 1, size - 1});
    CvrError error;
    const auto response = package.initWithRspData(vorla::asBytes(reply), error);
    if (!response || !response->strategy()) return 0;
    CvrLocalStrategy strategy = *response->strategy();
    CvrLocalStrategy kept;
    if (!kept.decode(strategy.encodeData()) || !kept.isEqual(strategy)) std::abort();
    package.encKey = strategy.encKey;
    package.requestPackage =
        CvrRequestPackage({}, CvrCommandUserInfo, std::make_shared<CvrUserInfoPackage>());
    if (!package.createReqData(error)) std::abort();
    return 0;
}
