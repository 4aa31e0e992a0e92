#include "crash/CaughtError.h"

#include <typeinfo>

#include "crash/CvrLog.h"
#include "crash/handler/CaughtReport.h"
#include "crash/handler/Demangled.h"

CaughtError::CaughtError(const std::exception& exception, const std::string& message)
    : errorName_(vorla::crash::demangled(typeid(exception).name())), reason_(exception.what()) {
    if (!message.empty()) reason_ += "\t***[Message: " + message + "]";
}

CaughtError::CaughtError(std::string errorName, std::string message, std::string stacks,
                         std::string threads)
    : errorName_(std::move(errorName)),
      reason_(std::move(message)),
      stacks_(std::move(stacks)),
      threads_(std::move(threads)) {}

bool CaughtError::throwException() const {
    if (errorName_.empty()) {
        CvrLogWarn("<WARN> CVR: Fail to packet customized crash data");
        return false;
    }
    return vorla::crash::reportCaught(
        {.type = errorName_, .error = reason_, .stack = stacks_, .threads = threads_.empty()});
}
