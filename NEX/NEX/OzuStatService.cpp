#include "NEX/NEX/OzuStatService.h"

#include <semaphore>
#include <utility>

#include "NEX/NEX/ExitGate.h"
#include "NEX/NEX/OzuStatAgent.h"
#include "platform/base/DispatchQueue.h"
#include "platform/base/raii.h"

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
            OzuHTTPSessionManager::prepareLibraries();
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
