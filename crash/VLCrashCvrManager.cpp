#include "crash/VLCrashCvrManager.h"

#include <atomic>

#include <vorla/CrashReporter.h>
#include "NEX/NEX/VLNEXUtilities.h"
#include "NEX/NEX/VLStatisticManager.h"
#include "platform/base/Bundle.h"
#include "platform/base/VLLog.h"

void VLCrashCvrManager::startCrashReport() {
    static std::atomic_flag started;
    if (started.test_and_set()) return;
    VLLog("%s 进程启动期间只上传一次crash数据", __func__);
    const std::string machine =
        VLNEXUtilities::UUID(VLStatisticManager::statFolderPath()).value_or("");
    const std::string bundle = vorla::Bundle::framework().infoString("CFBundleIdentifier");
    CrashReporter& reporter = CrashReporter::sharedInstance();
    reporter.enableLog(true);
    reporter.enableBlockMonitor(false, false);
    reporter.setDeviceId(machine);
    reporter.setUserId(machine);
    reporter.setBundleId(bundle);
    reporter.installWithAppkey(bundle);
}
