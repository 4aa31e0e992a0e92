// A small program that dies in the way that its arguments say: crash_child FOLDER KIND [OPTION]...
//
//   threads             50 threads wait meanwhile
//   loader-locked       one more holds the loader's lock
//   no-descriptors      all descriptors are used up
//   no-memory           no more address space is to be had
//   no-room             no file may grow
//   folder-removed      the store's folder no longer exists
//   callback-hangs      the host's function never returns
//   callback-faults     it writes to address 0, in a process that dies of something else
//   callback-tells      it attaches a log
//   merge               repeated crashes are merged
//   fork                the fault is in a forked child; the exit status is its signal's number
//   earlier-handler     there is one, which must see the fault as it was and exits with status 42
//   only-elsewhere      crashes through "libelsewhere" only are stored
#include <link.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>
#include <thread>

#include "crash/CvrCrashData.h"
#include "crash/CvrCrashHandler.h"
#include "examples/vorla-host/CrashKinds.h"
#include "tests/support/ChildProcess.h"

namespace {

CvrPreparedCrash preparedIn(const std::string& folder) {
    CvrPreparedCrash state;
    state.folder = folder;
    state.keyValueFile = folder + "/.cvrios.plist";
    state.crashMetaFile = folder + "/.crash_meta.data";
    state.userInfoFile = folder + "/.user_info.data";
    state.lockFile = folder + "/.lock";
    state.appId = "test.app";
    state.appVersion = "1.2(3)";
    state.processName = "crash_child";
    state.sessionId = "4711";
    state.startTime = 1;
    state.serverTimeDelta = 5000;
    state.valueMap = {{"A1", "17"}};
    return state;
}

[[noreturn]] void waitForEver() {
    for (;;) ::pause();
}

void startThread(void (*work)()) {
    std::thread(work).detach();
}

void holdLoaderLock() {
    ::dl_iterate_phdr([](dl_phdr_info*, size_t, void*) -> int { waitForEver(); }, nullptr);
}

void limit(int resource, rlim_t value) {
    const rlimit limit{value, value};
    ::setrlimit(static_cast<__rlimit_resource>(resource), &limit);
}

void useUpDescriptors() {
    limit(RLIMIT_NOFILE, 64);
    while (::dup(0) >= 0) {
    }
}

void useUpAddressSpace() {
    limit(RLIMIT_AS, 1);
}

void watchFault(int signal, siginfo_t* info, void* context) {
    const auto* const registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    static int times = 0;
    const bool isTheFault = signal == SIGSEGV && info->si_code == SEGV_MAPERR &&
                            info->si_addr == nullptr && registers[REG_TRAPNO] == 14;
    ::_exit(isTheFault && ++times == 1 ? 42 : 43);
}

void installEarlierHandler() {
    struct sigaction action = {};
    action.sa_sigaction = watchFault;
    action.sa_flags = SA_SIGINFO;
    ::sigaction(SIGSEGV, &action, nullptr);
}

int crashInChild(const CrashKind& kind) {
    vorla::test::ChildProcess child([&] {
        kind.provoke();
        return 3;
    });
    return std::max(0, -child.wait());
}

}  // namespace

int main(int argc, char** argv) {
    const CrashKind* const kind = argc < 3 ? nullptr : crashKind(argv[2]);
    if (!kind) return 2;
    const std::set<std::string> options(argv + 3, argv + argc);
    const auto asked = [&](const char* option) { return options.contains(option); };
    if (asked("earlier-handler")) installEarlierHandler();

    CvrCrashHandler& handler = CvrCrashHandler::sharedInstance();
    handler.prepare(preparedIn(argv[1]));
    handler.setExpMergeUpload(asked("merge"));
    handler.setAttachLog(std::string(10241, 'a'));
    if (asked("only-elsewhere")) handler.setIncludeShortNames({"libelsewhere"});
    CvrCrashData::sharedInstance().appendSessionEvent("before");
    CvrCrashData::sharedInstance().addUserMapData("key", "value");
    if (asked("callback-hangs")) exp_call_back_func = waitForEver;
    if (asked("callback-faults")) exp_call_back_func = crashKind("null")->provoke;
    if (asked("callback-tells"))
        exp_call_back_func = [] { CvrCrashHandler::sharedInstance().setAttachLog("told"); };
    handler.installHandler();

    for (int i = 0; asked("threads") && i < 50; ++i) startThread(waitForEver);
    if (asked("loader-locked")) {
        startThread(holdLoaderLock);
        ::usleep(50'000);
    }
    if (asked("folder-removed")) ::rmdir(argv[1]);
    if (asked("no-descriptors")) useUpDescriptors();
    if (asked("no-memory")) useUpAddressSpace();
    if (asked("no-room")) limit(RLIMIT_FSIZE, 4096);
    if (asked("fork")) return crashInChild(*kind);
    kind->provoke();
    std::_Exit(3);
}
