#include "NEX/NEX/OzuNexManager.h"

#include <atomic>
#include <system_error>

#include "NEX/NEX/OzuStatAgent.h"
#include "NEX/NEX/VLStatisticManager.h"
#include "platform/base/VLLog.h"
#include "settings/StatisticDoor.h"

namespace {

void countEvent(int number) {
    VLStatisticManager::defaultStatisticManager().statisticEvent(static_cast<uint64_t>(number));
}

void resetCounters() {
    VLLog("stat success!");
    VLStatisticManager::defaultStatisticManager().resetStatistic();
    VLLog("reset stat success!");
}

}  // namespace

OzuNexManager& OzuNexManager::defaultManager() {
    static OzuNexManager instance;
    return instance;
}

void OzuNexManager::startStat() {
    static std::atomic_flag started;
    if (started.test_and_set()) return;
    VLLog("%s 进程启动期间只上传一次统计数据", __func__);
    vorla::setStatisticReceiver(&countEvent);
    if (OzuStatAgent::endpoint().empty()) {
        VLLog("no address for statistics: they are counted and not sent");
        return;
    }
    VLLog("===> start stat!");
    try {
        const OzuStatService service;
        service.statWithCompleteBlock(&resetCounters, [] { VLLog("stat failed!"); });
    } catch (const std::system_error& failure) {
        VLLogError("statistics cannot be sent: %s", failure.what());
    }
}
