#pragma once

#include <map>
#include <string>
#include <vector>

#include "crash/CvrPreparedCrash.h"
#include "crash/handler/Published.h"

namespace vorla::crash {

/// What the host has told, as a crash finds it. CvrCrashData and CvrCrashHandler publish it.
struct SessionState {
    Published<CvrPreparedCrash> prepared;
    Published<std::vector<std::string>> events;
    Published<std::map<std::string, std::string>> userMaps;
    Published<std::map<std::string, std::string>> sceneData;
    Published<std::string> attachLog;
    Published<std::vector<std::string>> excludeShortNames;
    Published<std::vector<std::string>> includeShortNames;
    std::atomic<bool> enableLastCloseRecord{true};
    std::atomic<bool> mergeUpload{false};
};

SessionState& sessionState();

}  // namespace vorla::crash
