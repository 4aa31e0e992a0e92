#include "NEX/NEX+PAK/RMIModelNEX/NexService.h"

#include <utility>

#include "NEX/NEX+PAK/SerializationPAK/PakFailure.h"

std::shared_ptr<NexService> NexService::service() {
    vorla::pakFail("a service needs an agent");
}

NexService::NexService(std::shared_ptr<NexAgent> initWithAgent)
    : agent_(std::move(initWithAgent)) {}
