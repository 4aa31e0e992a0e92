#include "crash/handler/SessionState.h"

#include "platform/base/raii.h"

namespace vorla::crash {

void SessionState::reserveListenersRecord() {
    if (listenersRecord) return;
    listenersRecord = std::make_unique<CvrExpObj>();
    listenersRecord->hash.reserve(64);
    listenersRecord->expUid.reserve(64);
    listenersRecord->exceptionType.reserve(1024);
}

SessionState& sessionState() {
    static NoDestructor<SessionState> instance;
    return *instance;
}

}  // namespace vorla::crash
