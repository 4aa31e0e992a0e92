#pragma once

#include <utility>

#include "cinterface/services/guard.h"
#include "platform/base/LibraryCopy.h"

namespace vorla::c {

/// The result of the body, guarded, unless another copy of the library serves the process.
template <typename Body>
int serving(const char* function, Body&& body) {
    return guarded(function, [&body]() -> int {
        if (!isServingServices()) return VORLA_ERROR_OTHER_COPY;
        return std::forward<Body>(body)();
    });
}

}  // namespace vorla::c
