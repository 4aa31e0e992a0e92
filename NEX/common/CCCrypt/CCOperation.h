#pragma once

#include <cstdint>

/// The direction of a cipher.
enum CCOperation : uint32_t {
    CCOperationEncrypt = 0,
    CCOperationDecrypt = 1,
};
