// A small program that dies in the way that its arguments say: crash_child FOLDER KIND [OPTION]...
// Options: "threads" has 50 threads wait meanwhile, "callback-hangs" a host function that never
// returns, "merge" merging, "fork" dies in a forked child.

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "crash/CvrCrashData.h"
#include "crash/CvrCrashHandler.h"
#include "examples/vorla-host/CrashKinds.h"

namespace {

CvrPreparedCrash preparedIn(const std::string& folder) {
    CvrPreparedCrash state;
    state.folder = folder;
    state.keyValueFile = folder + "/.cvrios.plist";
    state.crashMetaFile = folder + "/.crash_meta.data";
    state.userInfoFile = folder + "/.user_info.data";
    state.lockFile = folder + "/.cvr.lock";
    state.appId = "test.app";
    state.appVersion = "1.2(3)";
    state.processName = "crash_child";
    state.sessionId = "4711";
    state.startTime = 1;
    state.valueMap = {{"A1", "17"}};
    return state;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    const CrashKind* const kind = crashKind(argv[2]);
    if (!kind) return 2;
    const std::set<std::string> options(argv + 3, argv + argc);
    CvrCrashHandler& handler = CvrCrashHandler::sharedInstance();
    handler.prepare(preparedIn(argv[1]));
    handler.setExpMergeUpload(options.contains("merge"));
    handler.setAttachLog(std::string(10241, 'a'));
    CvrCrashData::sharedInstance().appendSessionEvent("before");
    if (options.contains("callback-hangs"))
        exp_call_back_func = [] {
            for (;;) ::pause();
        };
    handler.installHandler();
    std::vector<std::thread> threads;
    for (int i = 0; options.contains("threads") && i < 50; ++i)
        threads.emplace_back([] {
            for (;;) ::pause();
        });
    if (options.contains("fork")) {
        int status = 0;
        const pid_t child = ::fork();
        if (child == 0) kind->provoke();
        ::waitpid(child, &status, 0);
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    kind->provoke();
    std::_Exit(3);
}
