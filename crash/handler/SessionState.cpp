#include "crash/handler/SessionState.h"

#include "platform/base/raii.h"

namespace vorla::crash {

SessionState& sessionState() {
    static NoDestructor<SessionState> instance;
    return *instance;
}

}  // namespace vorla::crash
