#include <vorla/VLStatistics.h>

#include "NEX/NEX/OzuNexManager.h"
#include "NEX/NEX/VLStatisticManager.h"

void VLStartStatistics() {
    OzuNexManager::defaultManager().startStat();
}

void VLStatEvent(int event) {
    VLStatisticManager::defaultStatisticManager().statisticEvent(static_cast<uint64_t>(event));
}
