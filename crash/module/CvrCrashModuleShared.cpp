// The one module of the process, on the process's own things.
#include "crash/facts/CvrFileKeyStore.h"
#include "crash/facts/CvrSecretKeyStore.h"
#include "crash/module/CvrBackgroundScheduler.h"
#include "crash/module/CvrCrashModule.h"
#include "crash/module/CvrHandlerCapture.h"
#include "crash/upload/CvrHttpTransport.h"
#include "crash/upload/CvrNetworkUtil.h"
#include "platform/base/Bundle.h"
#include "platform/base/raii.h"

namespace {

/// The address of the information dictionary, which has no path.
std::string syncEndpoint() {
    std::string address = vorla::Bundle::framework().infoString("CrashSyncURL");
    while (address.ends_with('/')) address.pop_back();
    return address.empty() ? address : address + "/analytics/cvrsync";
}

/// Everything that the module stands on. Never destroyed: tasks may run until the process ends.
struct World {
    CvrHandlerCapture capture;
    CvrBackgroundScheduler scheduler;
    CvrHttpTransport transport;
    CvrFileKeyStore keyFile{CvrModelBase::defaultFolder()};
    CvrSecretKeyStore keys{keyFile};
    CvrCrashModule module{{CvrModelBase::getDefualtAnaModel(),
                           CvrFilePersistHandler::sharedInstance(), capture, scheduler, transport,
                           keys, &syncEndpoint, &CvrNetworkUtil::networkAvaliable}};
};

}  // namespace

CvrCrashModule& CvrCrashModule::sharedInstance() {
    static vorla::NoDestructor<World> world;
    return world->module;
}
