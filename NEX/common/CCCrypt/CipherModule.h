#pragma once

#include "NEX/common/CCCrypt/evp.h"

namespace vorla {

/// What the module "ciphers" offers: see `runCipher`. False where that returns nothing.
using RunCipher = bool(const char* cipher, CCOperation direction, ByteView key, ByteView iv,
                       ByteView input, Bytes& output);

}  // namespace vorla

extern "C" [[gnu::visibility("default")]] vorla::RunCipher vorlaRunCipher;
