#include "NEX/NEX/OzuStatAgent.h"

#include <exception>
#include <semaphore>
#include <string_view>
#include <utility>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"
#include "NEX/NEX+PAK/SerializationPAK/ZenAttributeValues.h"
#include "NEX/NEX/ExitGate.h"
#include "NEX/common/CCCrypt/CryptData.h"
#include "NEX/common/CCCrypt/utf8.h"
#include "platform/base/Bundle.h"
#include "platform/base/DispatchQueue.h"
#include "platform/base/VLLog.h"
#include "platform/base/raii.h"

namespace {

/// Keeps the counters from casual eyes; the transport is what protects them.
constexpr std::string_view keyBytes = "\x4B\x91\x7E\x2C\xD3\x0A\x66\xF8";

std::optional<PakData> encrypted(VLSTStat& record) {
    return Ozu_desWithKey(record.toData(), vorla::utf8FromLatin1(keyBytes));
}

bool isAccepted(const std::shared_ptr<ZenPacket>& reply) {
    if (!reply) return true;
    try {
        const vorla::PakFailuresRaise untrusted;
        const int32_t code = ZenAttributeValues::intValueWithName("", reply->attributes());
        if (code != 0) VLLogError("stat: the server refuses the counters with code %d", code);
        return code == 0;
    } catch (const std::exception& failure) {
        VLLogError("return code cannot be read: %s", failure.what());
        return false;
    }
}

}  // namespace

OzuStatAgent::OzuStatAgent() : OzuNexAgent("zbpcstat") {}

std::string OzuStatAgent::endpoint() {
    return vorla::Bundle::framework().infoString("StatisticsURL");
}

std::vector<std::string> OzuStatAgent::serverURLs() const {
    const std::string url = endpoint();
    return url.empty() ? std::vector<std::string>() : std::vector{url};
}

void OzuStatAgent::stat(VLSTStat& record, std::function<void(bool)> withCompleteHandle) {
    const auto packet = ZenPacket::packet();
    const auto crypt = encrypted(record);
    if (!crypt) {
        VLLogError("statistics cannot be encrypted");
        if (withCompleteHandle) withCompleteHandle(false);
        return;
    }
    packet->putDataAttr("crypt", *crypt);
    invocation("stat", packet,
               [withCompleteHandle =
                    std::move(withCompleteHandle)](const std::shared_ptr<ZenPacket>& reply) {
                   VLLog("completeBlock start");
                   if (withCompleteHandle) withCompleteHandle(isAccepted(reply));
                   VLLog("completeBlock end");
               });
}

OzuStatService::OzuStatService() : NexService(OzuStatAgent::agent()) {}

void OzuStatService::statWithCompleteBlock(std::function<void()> completeBlock,
                                           std::function<void()> failedBlock) const {
    static vorla::NoDestructor<vorla::DispatchQueue> queue("nex - stat queue");
    vorla::ExitGate::shared().install();
    queue->async([agent = std::static_pointer_cast<OzuStatAgent>(this->agent()),
                  completeBlock = std::move(completeBlock), failedBlock = std::move(failedBlock)] {
        const auto ended = std::make_shared<std::binary_semaphore>(0);
        {
            const vorla::ExitGate::Stay stay;
            if (!OzuHTTPSessionManager::prepareLibraries()) {
                if (failedBlock) failedBlock();
                return;
            }
            const auto record = VLSTStat::ozuhdInstance();
            agent->stat(*record, [ended, completeBlock, failedBlock](bool accepted) {
                ended->release();
                const auto& block = accepted ? completeBlock : failedBlock;
                if (block) block();
            });
        }
        ended->acquire();
    });
}
