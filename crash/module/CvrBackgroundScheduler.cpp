#include "crash/module/CvrBackgroundScheduler.h"

#include <system_error>

#include <vorla/VLPrepareThreadForCrash.h>
#include "NEX/NEX/ExitGate.h"
#include "crash/CvrLog.h"

namespace {

/// The task, stopped for good when the process exits meanwhile.
CvrScheduler::Task guarded(CvrScheduler::Task task) {
    vorla::ExitGate::shared().install();
    return [task = std::move(task)] {
        thread_local const bool prepared = VLPrepareThreadForCrash();
        (void)prepared;
        const vorla::ExitGate::Stay stay;
        task();
    };
}

}  // namespace

void CvrBackgroundScheduler::async(Task task) {
    try {
        queue_.async(guarded(std::move(task)));
    } catch (const std::system_error& fault) {
        CvrLogError("<ERROR> CVR: no thread for the crash reporter: %s", fault.what());
    }
}

void CvrBackgroundScheduler::asyncAfter(std::chrono::milliseconds delay, Task task) {
    try {
        queue_.asyncAfter(delay, guarded(std::move(task)));
    } catch (const std::system_error& fault) {
        CvrLogError("<ERROR> CVR: no thread for the crash reporter: %s", fault.what());
    }
}
