#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "crash/CvrCrashListener.h"
#include "crash/CvrPreparedCrash.h"
#include "crash/handler/Published.h"
#include "crash/records/CvrExpObj.h"

namespace vorla::crash {

/// What the host has said, as a crash finds it. CvrCrashData and CvrCrashHandler publish it.
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
    std::atomic<bool> needSymbol{true};
    std::atomic<bool> hasProcName{false};

    std::array<std::atomic<CvrCrashListener*>, 8> listeners{};
    /// What listeners are shown of a crash; made at install with room for the few texts.
    std::unique_ptr<CvrExpObj> listenersRecord;
    void reserveListenersRecord();
};

SessionState& sessionState();

}  // namespace vorla::crash
