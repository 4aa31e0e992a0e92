#include <vorla/VLStatistics.h>

#include "NEX/NEX/OzuNexManager.h"
#include "NEX/NEX/VLStatisticManager.h"
#include "platform/base/LibraryCopy.h"

void VLStartStatistics() {
    if (vorla::isServingServices()) OzuNexManager::defaultManager().startStat();
}

void VLStatEvent(int event) {
    if (!vorla::isServingServices()) return;
    VLStatisticManager::defaultStatisticManager().statisticEvent(static_cast<uint64_t>(event));
}
