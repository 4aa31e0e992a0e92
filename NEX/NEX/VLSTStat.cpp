#include "NEX/NEX/VLSTStat.h"

#include "NEX/NEX/VLStatisticManager.h"

std::shared_ptr<VLSTStat> VLSTStat::ozuhdInstance() {
    auto stat = object();
    stat->setPak_stComm(VLSTStatComm::ozuhdInstance());
    stat->setPak_vProtocols_Function(
        VLSTStatProtocol_Function::ozuhdInstance(VLStatisticManager::defaultStatisticManager()));
    return stat;
}
