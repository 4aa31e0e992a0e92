#pragma once

#include "crash/CvrLog.h"
#include "crash/upload/CvrReqDataPackage.h"
#include "platform/base/VLLog.h"

namespace vorla::fuzz {

/// As at a start of the crash reporter, but for its log.
inline void prepareForReplies() {
    static const bool prepared = [] {
        setLogHandler([](std::string_view) {});
        CvrProtocolDataRegister::sharedInstance().registResponseObjectType(
            [] { return std::make_shared<CvrLocalStrategy>(); }, CvrCommandQueryStrategy);
        return true;
    }();
    (void)prepared;
}

}  // namespace vorla::fuzz
