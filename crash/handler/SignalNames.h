#pragma once

#include <string_view>

#include "crash/handler/TextBuffer.h"

namespace vorla::crash {

/// The names of a signal and of the code that came with it; what has no name is a number. Codes
/// are those of the system. May run after a fault.
void cvr_map_sig_name(int signal, int code, TextBuffer& signalText, TextBuffer& codeText);

}  // namespace vorla::crash
