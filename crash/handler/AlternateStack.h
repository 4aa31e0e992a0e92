#pragma once

namespace vorla::crash {

/// Gives the calling thread a stack for signal handlers, with a page below it that catches an
/// overflow. It is large enough for two signal frames of this processor and the handler on top of
/// them. It is returned when the thread ends, or by `dropAlternateStack` on the same thread. False
/// when refused; a large enough stack that is there already is kept.
bool takeAlternateStack();
void dropAlternateStack();

}  // namespace vorla::crash
